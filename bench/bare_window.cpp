// The bare Qt window that bench_startup compares the program with: a QApplication and one empty
// maximized QWidget, saying "mapped" when it is first exposed and "first paint" after its first
// frame as the program does under
// TM_EXIT_AFTER_FIRST_PAINT, and ending there.

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <cstdio>
#include <cstdlib>

namespace {

class FirstPaintExit : public QObject
{
public:
    explicit FirstPaintExit(QWidget& window) : QObject(&window), m_window(window) {}
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Expose && !m_mapped && watched == m_window.windowHandle() &&
            m_window.windowHandle()->isExposed()) {
            m_mapped = true;
            std::fputs("mapped\n", stdout);
            std::fflush(stdout);
        }
        if (event->type() == QEvent::Paint && !m_seen && watched == &m_window) {
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
    QWidget& m_window;
    bool m_seen = false;
    bool m_mapped = false;
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QWidget window;
    window.setWindowTitle(QStringLiteral("Bare window"));
    auto* probe = new FirstPaintExit(window);
    window.installEventFilter(probe);
    application.installEventFilter(probe); // the expose reaches the native window
    window.showMaximized();
    return QApplication::exec();
}
