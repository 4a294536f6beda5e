#pragma once

#include <QWidget>

#include <bitset>
#include <vector>

namespace app {

/**
 * A piano keyboard over the notes C0..B9 (MIDI note numbers 0..119, octave = note / 12, as the
 * program names notes), drawn with fixed key widths so that it scrolls in a scroll area. Two
 * marks per key: "held" (the notes the keyboard panel names, drawn as pressed keys) and
 * "played" (keys down on a MIDI keyboard, drawn in a second colour). Every C carries its name.
 *
 * A click or the space bar on the focused key asks for the key to be toggled (`keyClicked`);
 * the owner decides and sets the marks. Left and right move the focus key by a half-note, up and
 * down by an octave. Assistive technology sees each key as a check box named "C4, held".
 */
class PianoKeyboard : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kFirstNote = 0;
    static constexpr int kLastNote = 119;
    static constexpr int kKeyCount = kLastNote - kFirstNote + 1;
    static constexpr int kWhiteWidth = 18; // pixels per white key

    explicit PianoKeyboard(QWidget* parent = nullptr);
    ~PianoKeyboard() override;

    /** The held notes; notes outside C0..B9 are left out. */
    void setHeldNotes(const std::vector<int>& notes);
    std::vector<int> heldNotes() const;
    /** The keys down on a MIDI keyboard. */
    void setPlayedNotes(const std::vector<int>& notes);
    std::vector<int> playedNotes() const;
    bool isHeld(int note) const;
    bool isPlayed(int note) const;

    /** "C4", "C#4, held", "E4, held, played". */
    QString keyText(int note) const;
    /** Where a key is drawn (white keys the full height, black ones the upper part). */
    QRect keyRect(int note) const;
    /** The key under `point`, -1 for none. */
    int keyAt(QPoint point) const;
    static bool isBlack(int note);

    /** What a click on `note` does: asks for it to be toggled. */
    void clickKey(int note);

    int focusKey() const { return m_focusKey; }
    void setFocusKey(int note);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /** A key was clicked or toggled from the keyboard. */
    void keyClicked(int note);
    /** The focus key moved (the owner scrolls it into view). */
    void focusKeyChanged(int note);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void notifyKeyChanged(int note);

    std::bitset<kKeyCount> m_held;
    std::bitset<kKeyCount> m_played;
    int m_focusKey = 48; // C4
};

} // namespace app
