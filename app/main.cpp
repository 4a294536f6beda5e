#include "app/CTonalmancerApp.h"
#include "app/FontConfigWarmUp.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char* argv[])
{
    // --help and --version answer on the terminal before Qt looks for a display, so that they
    // work over ssh and when the manual pages are built.
    QStringList raw;
    for (int i = 1; i < argc; ++i)
        raw << QString::fromLocal8Bit(argv[i]);
    const app::CommandLine early = app::CommandLine::parse(raw);
    if (early.request() == app::CommandLine::Request::ShowHelp ||
        early.request() == app::CommandLine::Request::ShowVersion) {
        const QString text = early.request() == app::CommandLine::Request::ShowHelp
                                 ? app::CommandLine::helpText()
                                 : app::CommandLine::versionText();
        std::fputs(text.toLocal8Bit().constData(), stdout);
        return 0;
    }

    app::FontConfigWarmUp fonts; // while Qt connects to the display
    QApplication application(argc, argv);
    app::CTonalmancerApp::setApplicationNames();
    app::CTonalmancerApp tonalmancer;
    QStringList arguments = QApplication::arguments();
    arguments.removeFirst();
    fonts.wait(); // the window's first text needs it
    if (!tonalmancer.start(arguments))
        return 1;
    return QApplication::exec();
}
