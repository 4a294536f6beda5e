#include "app/AppIcons.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <vector>

namespace app {

namespace {

constexpr std::array kCommandIcons = {
    AppIcons::CommandIcon{"file.open", "document-open", "song-open"},
    AppIcons::CommandIcon{"file.save", "document-save", "song-save"},
    AppIcons::CommandIcon{"part.new", "document-new", "part-new"},
    AppIcons::CommandIcon{"part.load", "", "part-open"},
    AppIcons::CommandIcon{"part.save", "", "part-save"},
    AppIcons::CommandIcon{"part.play", "media-playback-start", "play"},
    AppIcons::CommandIcon{"part.playChord", "", "play-chord"},
    AppIcons::CommandIcon{"part.stop", "media-playback-stop", "stop"},
    AppIcons::CommandIcon{"part.createMidiFile", "", "midi-file"},
    AppIcons::CommandIcon{"part.createBuzzPatternsButton", "", "buzz-patterns"},
    AppIcons::CommandIcon{"part.addToPresetsButton", "", "add-preset"},
    AppIcons::CommandIcon{"part.printChordList", "document-print", "print"},
    AppIcons::CommandIcon{"view.showBmx", "", "machine-view"},
    AppIcons::CommandIcon{"view.showSettings", "", "settings-view"},
    AppIcons::CommandIcon{"help.topics", "help-contents", "help"},
    AppIcons::CommandIcon{"file.exit", "application-exit", "exit"},
};

/** How much of a drawing shows when its command is disabled. */
constexpr qreal kDisabledOpacity = 0.35;

/**
 * The sizes the build rendered of one drawing (`prefix`-<size>.png), decoded only when a size is
 * first drawn: start-up makes every command's icon but draws few of them. The disabled look is
 * the drawing faded into the background: the style's own grey version comes out lighter than the
 * enabled drawing on a dark palette, so a disabled command would look the brighter one.
 */
class RenderedIconEngine : public QIconEngine
{
public:
    static QIcon make(const QString& prefix)
    {
        auto engine = std::make_unique<RenderedIconEngine>();
        engine->m_prefix = prefix;
        for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
            if (QFile::exists(engine->file(size)))
                engine->m_sizes.push_back(size);
        }
        if (engine->m_sizes.empty())
            return {};
        return QIcon(engine.release());
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override
    {
        // The smallest drawing that fills the request, else the largest there is; scaled to fit.
        const int wanted = std::max(size.width(), size.height());
        int chosen = m_sizes.back();
        for (const int s : m_sizes) {
            if (s >= wanted) {
                chosen = s;
                break;
            }
        }
        QPixmap drawing = load(chosen, mode == QIcon::Disabled);
        if (drawing.width() > size.width() || drawing.height() > size.height())
            drawing = drawing.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        return drawing;
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        painter->drawPixmap(rect, pixmap(rect.size(), mode, state));
    }

    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return pixmap(size, mode, state).size();
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        QList<QSize> sizes;
        for (const int s : m_sizes)
            sizes << QSize(s, s);
        return sizes;
    }

    QIconEngine* clone() const override { return new RenderedIconEngine(*this); }
    QString key() const override { return QStringLiteral("tonalmancer-rendered"); }

private:
    QString file(int size) const { return QStringLiteral("%1-%2.png").arg(m_prefix).arg(size); }

    QPixmap load(int size, bool disabled)
    {
        std::map<int, QPixmap>& cache = disabled ? m_faded : m_normal;
        if (const auto found = cache.find(size); found != cache.end())
            return found->second;
        QPixmap normal;
        normal.load(file(size));
        QPixmap result = normal;
        if (disabled && !normal.isNull()) {
            result = QPixmap(normal.size());
            result.fill(Qt::transparent);
            QPainter painter(&result);
            painter.setOpacity(kDisabledOpacity);
            painter.drawPixmap(0, 0, normal);
        }
        cache.emplace(size, result);
        return result;
    }

    QString m_prefix;
    std::vector<int> m_sizes; // ascending
    std::map<int, QPixmap> m_normal;
    std::map<int, QPixmap> m_faded;
};

QIcon fromRenderedSizes(const QString& prefix)
{
    return RenderedIconEngine::make(prefix);
}

} // namespace

std::span<const AppIcons::CommandIcon> AppIcons::commandIcons()
{
    return kCommandIcons;
}

QIcon AppIcons::forCommand(std::string_view commandId)
{
    for (const CommandIcon& entry : kCommandIcons) {
        if (entry.commandId != commandId)
            continue;
        const QIcon ours = own(entry.ownName);
        if (entry.themeName.empty())
            return ours;
        return QIcon::fromTheme(QString::fromLatin1(entry.themeName.data(),
                                                    static_cast<qsizetype>(entry.themeName.size())),
                                ours);
    }
    return {};
}

QIcon AppIcons::ownForCommand(std::string_view commandId)
{
    for (const CommandIcon& entry : kCommandIcons) {
        if (entry.commandId == commandId)
            return own(entry.ownName);
    }
    return {};
}

QIcon AppIcons::own(std::string_view name)
{
    return fromRenderedSizes(QStringLiteral(":/icons/toolbar/") +
                             QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size())));
}

QIcon AppIcons::application()
{
    return QIcon::fromTheme(QStringLiteral("tonalmancer"),
                            fromRenderedSizes(QStringLiteral(":/icons/tonalmancer")));
}

} // namespace app
