#pragma once

#include <QToolBar>

#include <cstdint>

class QSpinBox;

namespace app {

/**
 * The tempo bar at the top of the main window: beats per minute and ticks per beat, the two
 * values that playback and the MIDI file writer read. It docks at the top only.
 */
class CTempoBar : public QToolBar
{
    Q_OBJECT
public:
    static constexpr int kDefaultBeatsPerMinute = 126;
    static constexpr int kDefaultTicksPerBeat = 4;

    explicit CTempoBar(QWidget* parent = nullptr);

    std::uint16_t beatsPerMinute() const;
    void setBeatsPerMinute(std::uint16_t value);
    std::uint16_t ticksPerBeat() const;
    void setTicksPerBeat(std::uint16_t value);

    QSpinBox* beatsPerMinuteBox() const { return m_bpm; }
    QSpinBox* ticksPerBeatBox() const { return m_tpb; }

Q_SIGNALS:
    void tempoChanged();

private:
    QSpinBox* m_bpm = nullptr;
    QSpinBox* m_tpb = nullptr;
};

} // namespace app
