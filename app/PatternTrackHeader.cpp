#include "app/PatternTrackHeader.h"

#include "app/PatternCellText.h"
#include "app/PatternGridModel.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>

namespace app {

namespace {

constexpr int kSwitchWidth = 22;
constexpr int kSwitchHeight = 12;
constexpr int kMargin = 4;

} // namespace

PatternTrackHeader::PatternTrackHeader(QWidget* parent) : UniformHeader(Qt::Horizontal, parent)
{
    setObjectName(QStringLiteral("patternTrackHeader"));
    setAccessibleName(tr("Tracks"));
    setSectionResizeMode(QHeaderView::Stretch);
    setContextMenuPolicy(Qt::CustomContextMenu);
}

QRect PatternTrackHeader::switchRect(const QRect& section)
{
    return {section.right() - kMargin - kSwitchWidth, section.top() + kMargin, kSwitchWidth,
            kSwitchHeight};
}

QRect PatternTrackHeader::sectionRect(int logicalIndex) const
{
    return {sectionViewportPosition(logicalIndex), 0, sectionSize(logicalIndex), height()};
}

void PatternTrackHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    if (model() == nullptr || !rect.isValid())
        return;
    QStyleOptionHeader option;
    initStyleOptionForIndex(&option, logicalIndex);
    option.rect = rect;
    option.text.clear();
    painter->save();
    style()->drawControl(QStyle::CE_HeaderSection, &option, painter, this);

    const bool on =
        model()->headerData(logicalIndex, orientation(), PatternGridModel::TrackOnRole).toBool();
    const auto setting = static_cast<std::uint8_t>(
        model()
            ->headerData(logicalIndex, orientation(), PatternGridModel::TrackOctaveRole)
            .toInt());

    // The switch: a green pill with its knob on the right when on, grey with it left when off.
    const QRect pill = switchRect(rect);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(on ? QColor(60, 170, 90) : palette().color(QPalette::Mid));
    painter->drawRoundedRect(pill, kSwitchHeight / 2.0, kSwitchHeight / 2.0);
    const int knob = kSwitchHeight - 4;
    painter->setBrush(palette().color(QPalette::Base));
    painter->drawEllipse(on ? pill.right() - knob - 1 : pill.left() + 2, pill.top() + 2, knob,
                         knob);

    const QColor text =
        palette().color(on ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
    painter->setPen(text);
    const QRect lines = rect.adjusted(kMargin, kMargin / 2, -kMargin, -kMargin / 2);
    const int lineHeight = fontMetrics().height();
    QFont font = painter->font();
    font.setBold(true);
    painter->setFont(font);
    const QFontMetrics bold(font);
    const QRect first(lines.left(), lines.top(), pill.left() - lines.left() - 2, lineHeight);
    // "Track 3" where it fits, else the number alone: narrow windows still tell tracks apart.
    QString title = model()->headerData(logicalIndex, orientation()).toString();
    if (bold.horizontalAdvance(title) > first.width())
        title = QString::number(logicalIndex + 1);
    painter->drawText(first, Qt::AlignLeft | Qt::AlignVCenter, title);
    font.setBold(false);
    painter->setFont(font);
    const QRect second(lines.left(), lines.top() + lineHeight, lines.width(), lineHeight);
    painter->drawText(second, Qt::AlignLeft | Qt::AlignVCenter,
                      fontMetrics().elidedText(PatternCellText::trackOctaveWords(setting),
                                               Qt::ElideRight, second.width()));
    painter->restore();
}

QSize PatternTrackHeader::sectionSizeFromContents(int logicalIndex) const
{
    QSize size = UniformHeader::sectionSizeFromContents(logicalIndex);
    size.setHeight(std::max(size.height(), 2 * fontMetrics().height() + 2 * kMargin));
    size.setWidth(
        std::max(size.width(), fontMetrics().horizontalAdvance(QStringLiteral("Track 8")) +
                                   kSwitchWidth + 3 * kMargin));
    return size;
}

void PatternTrackHeader::mousePressEvent(QMouseEvent* event)
{
    const int track = logicalIndexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && track >= 0 &&
        switchRect(sectionRect(track))
            .adjusted(-2, -2, 2, 2)
            .contains(event->position().toPoint())) {
        Q_EMIT switchClicked(track);
        event->accept();
        return;
    }
    UniformHeader::mousePressEvent(event);
}

} // namespace app
