#include "app/PianoKeyboard.h"

#include "app/CNoteKeyboard.h"
#include "app/PianoKeyboardAccessible.h"
#include "music/Note.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace app {

namespace {

constexpr int kOctave = 12;
constexpr int kWhitePerOctave = 7;
constexpr int kHeight = 92;
// The white key a pitch class is, or the white key left of a black one.
constexpr std::array<int, 12> kWhiteIndex = {0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};

std::size_t bit(int note)
{
    return static_cast<std::size_t>(note - PianoKeyboard::kFirstNote);
}

bool inRange(int note)
{
    return note >= PianoKeyboard::kFirstNote && note <= PianoKeyboard::kLastNote;
}

std::vector<int> notesOf(const std::bitset<PianoKeyboard::kKeyCount>& bits)
{
    std::vector<int> notes;
    for (int note = PianoKeyboard::kFirstNote; note <= PianoKeyboard::kLastNote; ++note) {
        if (bits.test(bit(note)))
            notes.push_back(note);
    }
    return notes;
}

} // namespace

PianoKeyboard::PianoKeyboard(QWidget* parent) : QWidget(parent)
{
    PianoKeyboardAccessible::installFactory();
    setObjectName(QStringLiteral("pianoKeyboard"));
    setAccessibleName(tr("Keyboard"));
    setAccessibleDescription(tr("Space toggles the focused key; the arrow keys move the focus."));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFixedSize(sizeHint());
    setToolTip(tr("Click keys to add or remove notes; each click plays the notes."));
}

PianoKeyboard::~PianoKeyboard() = default;

bool PianoKeyboard::isBlack(int note)
{
    return CNoteKeyboard::isBlack(((note % kOctave) + kOctave) % kOctave);
}

QSize PianoKeyboard::sizeHint() const
{
    return {kKeyCount / kOctave * kWhitePerOctave * kWhiteWidth + 1, kHeight};
}

QSize PianoKeyboard::minimumSizeHint() const
{
    return sizeHint();
}

void PianoKeyboard::setHeldNotes(const std::vector<int>& notes)
{
    std::bitset<kKeyCount> held;
    for (int note : notes) {
        if (inRange(note))
            held.set(bit(note));
    }
    const std::bitset<kKeyCount> changed = held ^ m_held;
    m_held = held;
    for (int note : notesOf(changed))
        notifyKeyChanged(note);
    if (changed.any())
        update();
}

void PianoKeyboard::setPlayedNotes(const std::vector<int>& notes)
{
    std::bitset<kKeyCount> played;
    for (int note : notes) {
        if (inRange(note))
            played.set(bit(note));
    }
    const std::bitset<kKeyCount> changed = played ^ m_played;
    m_played = played;
    for (int note : notesOf(changed))
        notifyKeyChanged(note);
    if (changed.any())
        update();
}

std::vector<int> PianoKeyboard::heldNotes() const
{
    return notesOf(m_held);
}

std::vector<int> PianoKeyboard::playedNotes() const
{
    return notesOf(m_played);
}

bool PianoKeyboard::isHeld(int note) const
{
    return inRange(note) && m_held.test(bit(note));
}

bool PianoKeyboard::isPlayed(int note) const
{
    return inRange(note) && m_played.test(bit(note));
}

QString PianoKeyboard::keyText(int note) const
{
    QString text = QString::fromStdString(music::noteNameWithOctave(note));
    if (isHeld(note))
        text += tr(", held");
    if (isPlayed(note))
        text += tr(", played");
    return text;
}

QRect PianoKeyboard::keyRect(int note) const
{
    if (!inRange(note))
        return {};
    const int octave = note / kOctave;
    const int white = octave * kWhitePerOctave + kWhiteIndex[static_cast<std::size_t>(note % 12)];
    if (!isBlack(note))
        return {white * kWhiteWidth, 0, kWhiteWidth, kHeight - 1};
    const int blackWidth = kWhiteWidth * 2 / 3;
    return {(white + 1) * kWhiteWidth - blackWidth / 2, 0, blackWidth, kHeight * 3 / 5};
}

int PianoKeyboard::keyAt(QPoint point) const
{
    for (int pass = 0; pass < 2; ++pass) { // black keys lie on top of the white ones
        for (int note = kFirstNote; note <= kLastNote; ++note) {
            if (isBlack(note) == (pass == 0) && keyRect(note).contains(point))
                return note;
        }
    }
    return -1;
}

void PianoKeyboard::setFocusKey(int note)
{
    note = std::clamp(note, int(kFirstNote), int(kLastNote));
    if (note == m_focusKey)
        return;
    m_focusKey = note;
    update();
    if (hasFocus() && QAccessible::isActive()) {
        QAccessibleEvent event(this, QAccessible::Focus);
        event.setChild(note - kFirstNote);
        QAccessible::updateAccessibility(&event);
    }
    Q_EMIT focusKeyChanged(note);
}

void PianoKeyboard::clickKey(int note)
{
    if (!inRange(note))
        return;
    setFocusKey(note);
    Q_EMIT keyClicked(note);
}

void PianoKeyboard::notifyKeyChanged(int note)
{
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(this, changed);
    event.setChild(note - kFirstNote);
    QAccessible::updateAccessibility(&event);
}

void PianoKeyboard::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QPalette pal = palette();
    const QColor heldColor = pal.color(QPalette::Highlight);
    const QColor playedColor(230, 140, 30);
    const QRect dirty = event->rect();
    QFont labelFont = painter.font(); // the C keys' octave names
    labelFont.setPointSizeF(std::max(6.0, labelFont.pointSizeF() * 0.8));
    const auto drawKey = [&](int note) {
        const QRect rect = keyRect(note);
        if (!rect.intersects(dirty))
            return;
        const bool black = isBlack(note);
        QColor fill = black ? QColor(35, 35, 35) : QColor(252, 252, 250);
        if (isHeld(note))
            fill = black ? heldColor.darker(120) : heldColor.lighter(150);
        painter.setPen(QColor(70, 70, 70));
        painter.setBrush(fill);
        painter.drawRect(rect);
        if (isPlayed(note)) {
            // A bar across the lower part, so that a held and played key shows both.
            const int bar = black ? 10 : 14;
            painter.setPen(Qt::NoPen);
            painter.setBrush(playedColor);
            painter.drawRect(rect.adjusted(2, rect.height() - bar - 2, -1, -2));
        }
        if (!black && note % kOctave == 0) {
            painter.setPen(Qt::black);
            painter.setFont(labelFont);
            painter.drawText(rect.adjusted(0, 0, 0, isPlayed(note) ? -18 : -3),
                             Qt::AlignHCenter | Qt::AlignBottom,
                             QString::fromStdString(music::noteNameWithOctave(note)));
        }
        if (hasFocus() && note == m_focusKey) {
            painter.setPen(
                QPen(black ? QColor(Qt::white) : pal.color(QPalette::Highlight), 2, Qt::DotLine));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(rect.adjusted(2, 2, -2, -2));
        }
    };
    for (int note = kFirstNote; note <= kLastNote; ++note) {
        if (!isBlack(note))
            drawKey(note);
    }
    for (int note = kFirstNote; note <= kLastNote; ++note) {
        if (isBlack(note))
            drawKey(note);
    }
}

void PianoKeyboard::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    clickKey(keyAt(event->position().toPoint()));
}

void PianoKeyboard::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        setFocusKey(m_focusKey - 1);
        break;
    case Qt::Key_Right:
        setFocusKey(m_focusKey + 1);
        break;
    case Qt::Key_Up:
        setFocusKey(m_focusKey + kOctave);
        break;
    case Qt::Key_Down:
        setFocusKey(m_focusKey - kOctave);
        break;
    case Qt::Key_Space:
        clickKey(m_focusKey);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace app
