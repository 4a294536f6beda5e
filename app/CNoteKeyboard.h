#pragma once

#include <QWidget>

#include <array>

namespace app {

/**
 * Twelve note check boxes shown as one octave of a keyboard, C to B: a click toggles a key, the
 * arrow keys move the focus and the space bar toggles the focused key.
 */
class CNoteKeyboard : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kKeys = 12;
    using Ticks = std::array<bool, kKeys>;

    explicit CNoteKeyboard(QWidget* parent = nullptr);

    const Ticks& ticks() const { return m_ticks; }
    void setTicks(const Ticks& ticks);
    bool isTicked(int pitchClass) const { return m_ticks.at(static_cast<std::size_t>(pitchClass)); }
    void setTicked(int pitchClass, bool ticked);
    void clear() { setTicks({}); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /** Whether the pitch class (0 = C) is a black key of the piano. */
    static bool isBlack(int pitchClass);

Q_SIGNALS:
    void ticksChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QRectF keyRect(int pitchClass) const;
    int keyAt(QPointF point) const;

    Ticks m_ticks{};
    int m_focusKey = 0;
};

} // namespace app
