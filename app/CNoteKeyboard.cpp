#include "app/CNoteKeyboard.h"

#include "music/Note.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace app {

namespace {

constexpr int kWhiteKeys = 7;
// Index of the white key each white pitch class is, or of the white key left of a black one.
constexpr std::array<int, 12> kWhiteIndex = {0, 0, 1, 1, 2, 3, 3, 4, 4, 5, 5, 6};

} // namespace

CNoteKeyboard::CNoteKeyboard(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setToolTip(tr("Click the notes to tick them."));
}

void CNoteKeyboard::setTicks(const Ticks& ticks)
{
    if (ticks == m_ticks)
        return;
    m_ticks = ticks;
    update();
    Q_EMIT ticksChanged();
}

void CNoteKeyboard::setTicked(int pitchClass, bool ticked)
{
    if (pitchClass < 0 || pitchClass >= kKeys)
        return;
    Ticks ticks = m_ticks;
    ticks[static_cast<std::size_t>(pitchClass)] = ticked;
    setTicks(ticks);
}

QSize CNoteKeyboard::sizeHint() const
{
    return {kWhiteKeys * 34, 96};
}

QSize CNoteKeyboard::minimumSizeHint() const
{
    return {kWhiteKeys * 24, 80};
}

bool CNoteKeyboard::isBlack(int pitchClass)
{
    switch (pitchClass) {
    case 1:
    case 3:
    case 6:
    case 8:
    case 10:
        return true;
    default:
        return false;
    }
}

QRectF CNoteKeyboard::keyRect(int pitchClass) const
{
    const qreal whiteWidth = (width() - 1) / qreal(kWhiteKeys);
    const qreal height = this->height() - 1;
    const int white = kWhiteIndex[static_cast<std::size_t>(pitchClass)];
    if (!isBlack(pitchClass))
        return {white * whiteWidth, 0, whiteWidth, height};
    const qreal blackWidth = whiteWidth * 0.6;
    return {(white + 1) * whiteWidth - blackWidth / 2, 0, blackWidth, height * 0.6};
}

int CNoteKeyboard::keyAt(QPointF point) const
{
    for (int key = 0; key < kKeys; ++key) {
        if (isBlack(key) && keyRect(key).contains(point))
            return key;
    }
    for (int key = 0; key < kKeys; ++key) {
        if (!isBlack(key) && keyRect(key).contains(point))
            return key;
    }
    return -1;
}

void CNoteKeyboard::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, false);
    const QPalette pal = palette();
    const QColor tickedColor = pal.color(QPalette::Highlight);
    const auto drawKey = [&](int key) {
        const QRectF rect = keyRect(key);
        const bool black = isBlack(key);
        QColor fill = black ? QColor(40, 40, 40) : QColor(250, 250, 250);
        if (m_ticks[static_cast<std::size_t>(key)])
            fill = black ? tickedColor.darker(130) : tickedColor.lighter(140);
        painter.setPen(QColor(60, 60, 60));
        painter.setBrush(fill);
        painter.drawRect(rect);
        const QString name = QString::fromUtf8(music::noteName(key).data(),
                                               static_cast<qsizetype>(music::noteName(key).size()));
        painter.setPen(black && !m_ticks[static_cast<std::size_t>(key)] ? Qt::white : Qt::black);
        QRectF label = rect.adjusted(0, rect.height() - 22, 0, -4);
        painter.drawText(label, Qt::AlignHCenter | Qt::AlignBottom, name);
        if (hasFocus() && key == m_focusKey) {
            painter.setPen(QPen(pal.color(QPalette::Highlight), 2, Qt::DotLine));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(rect.adjusted(3, 3, -3, -3));
        }
    };
    for (int key = 0; key < kKeys; ++key) {
        if (!isBlack(key))
            drawKey(key);
    }
    for (int key = 0; key < kKeys; ++key) {
        if (isBlack(key))
            drawKey(key);
    }
}

void CNoteKeyboard::mousePressEvent(QMouseEvent* event)
{
    const int key = keyAt(event->position());
    if (key < 0 || event->button() != Qt::LeftButton)
        return;
    m_focusKey = key;
    setTicked(key, !isTicked(key));
}

void CNoteKeyboard::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        m_focusKey = (m_focusKey + kKeys - 1) % kKeys;
        update();
        break;
    case Qt::Key_Right:
        m_focusKey = (m_focusKey + 1) % kKeys;
        update();
        break;
    case Qt::Key_Space:
        setTicked(m_focusKey, !isTicked(m_focusKey));
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

} // namespace app
