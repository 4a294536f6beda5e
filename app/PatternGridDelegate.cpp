#include "app/PatternGridDelegate.h"

#include "app/NoteNames.h"
#include "app/PatternCellValidator.h"
#include "app/PatternGridModel.h"
#include "part/CellKind.h"
#include "part/PatternCell.h"

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>

#include <vector>

namespace app {

namespace {

using Model = PatternGridModel;

/** Colours that read on a light and on a dark palette alike. */
const QColor kChordNote(40, 110, 200);
const QColor kChance(230, 130, 20);
const QColor kFixedNote(40, 150, 80);
const QColor kOff(200, 60, 60);
const QColor kPlaying(255, 196, 64);
const QColor kPreview(150, 90, 210); // the Math Window's pattern, not applied yet

QColor mixed(const QColor& a, const QColor& b, double amountOfB)
{
    const double keep = 1.0 - amountOfB;
    return QColor::fromRgbF(static_cast<float>(a.redF() * keep + b.redF() * amountOfB),
                            static_cast<float>(a.greenF() * keep + b.greenF() * amountOfB),
                            static_cast<float>(a.blueF() * keep + b.blueF() * amountOfB));
}

struct Piece
{
    QString text;
    QColor colour;
    bool small = false;
};

/** The parts of a cell's text in their colours; `arrow` is set for a shifted chord note. */
std::vector<Piece> piecesOf(const QModelIndex& index, const QPalette& palette, int& arrow)
{
    const auto kind = static_cast<part::CellKind>(index.data(Model::CellKindRole).toInt());
    const int value = index.data(Model::CellValueRole).toInt();
    const int octave = index.data(Model::CellOctaveRole).toInt();
    arrow = 0;
    switch (kind) {
    case part::CellKind::Nothing:
        return {{QStringLiteral("\u00B7"),
                 mixed(palette.color(QPalette::Text), palette.color(QPalette::Base), 0.7)}};
    case part::CellKind::ChordNote:
    case part::CellKind::ChanceChordNote: {
        std::vector<Piece> pieces;
        if (kind == part::CellKind::ChanceChordNote)
            pieces.push_back({QStringLiteral("?"), kChance});
        pieces.push_back({QString::number(value + 1), kChordNote});
        if (octave == part::kShiftUp)
            arrow = 1;
        else if (octave == part::kShiftDown)
            arrow = -1;
        return pieces;
    }
    case part::CellKind::FixedNote:
        if (value < 12) {
            return {{NoteNames::name(value), kFixedNote},
                    {octave == 0 ? QStringLiteral("t") : QString::number(octave), kFixedNote,
                     octave == 0}};
        }
        break;
    case part::CellKind::Off:
        return {{QStringLiteral("off"), kOff}};
    }
    return {{index.data(Qt::DisplayRole).toString(), palette.color(QPalette::PlaceholderText)}};
}

void drawArrow(QPainter* painter, const QRectF& box, int direction, const QColor& colour)
{
    QPainterPath path;
    const double mid = box.center().x();
    const double half = box.width() / 2.0;
    if (direction > 0) {
        path.moveTo(mid, box.top());
        path.lineTo(mid + half, box.bottom());
        path.lineTo(mid - half, box.bottom());
    } else {
        path.moveTo(mid - half, box.top());
        path.lineTo(mid + half, box.top());
        path.lineTo(mid, box.bottom());
    }
    path.closeSubpath();
    painter->fillPath(path, colour);
}

} // namespace

void PatternGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const
{
    const QPalette& palette = option.palette;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const bool past = index.data(Model::PastLengthRole).toBool();
    const bool beat = index.data(Model::BeatRole).toBool();
    const bool playing = index.data(Model::PlayingRole).toBool();
    const bool trackOn = index.data(Model::TrackOnRole).toBool();

    QColor background = palette.color(QPalette::Base);
    if (beat)
        background = mixed(background, palette.color(QPalette::Highlight), 0.12);
    if (past)
        background = mixed(background, palette.color(QPalette::Mid), 0.55);
    if (const int preview = index.data(Model::PreviewRole).toInt(); preview > 0)
        background = mixed(background, kPreview, preview == 2 ? 0.38 : 0.14);
    if (playing)
        background = mixed(background, kPlaying, 0.75);
    if (selected)
        background = mixed(background, palette.color(QPalette::Highlight), 0.55);
    painter->save();
    painter->fillRect(option.rect, background);
    if (beat) {
        painter->setPen(mixed(palette.color(QPalette::Base), palette.color(QPalette::Text), 0.45));
        painter->drawLine(option.rect.topLeft(), option.rect.topRight());
    }
    if (playing && index.column() == 0) {
        const QRect r = option.rect;
        QPainterPath marker;
        marker.moveTo(r.left() + 1, r.top() + 2);
        marker.lineTo(r.left() + 1 + r.height() / 2.0 - 2, r.center().y());
        marker.lineTo(r.left() + 1, r.bottom() - 2);
        marker.closeSubpath();
        painter->fillPath(marker, kPlaying.darker(170));
    }

    int arrow = 0;
    std::vector<Piece> pieces = piecesOf(index, palette, arrow);
    const bool faded = past || !trackOn;
    QFont font = option.font;
    QFont smallFont = font;
    smallFont.setPointSizeF(font.pointSizeF() * 0.8);
    smallFont.setItalic(true);
    const QFontMetricsF metrics(font);
    const QFontMetricsF smallMetrics(smallFont);
    const double arrowWidth = arrow != 0 ? metrics.height() * 0.45 : 0.0;
    double width = arrow != 0 ? arrowWidth + 2.0 : 0.0;
    for (const Piece& piece : pieces)
        width += (piece.small ? smallMetrics : metrics).horizontalAdvance(piece.text);
    double x = option.rect.center().x() - width / 2.0 + 1.0;
    const double baseline = option.rect.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    for (Piece& piece : pieces) {
        QColor colour = piece.colour;
        if (faded)
            colour = mixed(colour, background, 0.6);
        painter->setPen(colour);
        painter->setFont(piece.small ? smallFont : font);
        painter->drawText(QPointF(x, baseline), piece.text);
        x += (piece.small ? smallMetrics : metrics).horizontalAdvance(piece.text);
    }
    if (arrow != 0) {
        const double size = arrowWidth;
        const QRectF box(x + 2.0, option.rect.center().y() - size / 2.0, size, size);
        drawArrow(painter, box, arrow,
                  faded ? mixed(kChordNote, background, 0.6) : kChordNote.darker(120));
    }
    if (option.state.testFlag(QStyle::State_HasFocus)) {
        painter->setPen(QPen(palette.color(QPalette::Highlight).darker(130), 2));
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }
    painter->restore();
}

QWidget* PatternGridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                           const QModelIndex&) const
{
    auto* editor = new QLineEdit(parent);
    editor->setObjectName(QStringLiteral("patternCellEditor"));
    editor->setAccessibleName(tr("Cell"));
    editor->setValidator(new PatternCellValidator(editor));
    editor->setAlignment(Qt::AlignCenter);
    editor->setToolTip(tr("1 to 7: chord note (?3 chance, 2+ or 2- shifted); C#4: fixed note, "
                          "C#t in the track's octave; off; empty: nothing."));
    return editor;
}

void PatternGridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        line->setText(index.data(Qt::EditRole).toString());
        line->selectAll();
    }
}

void PatternGridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                       const QModelIndex& index) const
{
    if (auto* line = qobject_cast<QLineEdit*>(editor);
        line != nullptr && line->hasAcceptableInput())
        model->setData(index, line->text(), Qt::EditRole);
}

} // namespace app
