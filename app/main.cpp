#include "app/CTonalmancerApp.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    app::CTonalmancerApp::setApplicationNames();
    app::CTonalmancerApp tonalmancer;
    QStringList arguments = QApplication::arguments();
    arguments.removeFirst();
    if (!tonalmancer.start(arguments))
        return 1;
    return QApplication::exec();
}
