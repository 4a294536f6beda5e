// The bare Qt window that bench_startup compares the program with: a QApplication and one empty
// maximized QWidget, saying "first paint" after its first frame as the program does under
// TM_EXIT_AFTER_FIRST_PAINT, and ending there.

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace {

class FirstPaintExit : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && !m_seen) {
            m_seen = true;
            QTimer::singleShot(0, [] {
                std::fputs("first paint\n", stdout);
                std::fflush(stdout);
                std::_Exit(0);
            });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    bool m_seen = false;
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Bare window"));
    window.installEventFilter(new FirstPaintExit(&window));
    window.showMaximized();
    return QApplication::exec();
}
