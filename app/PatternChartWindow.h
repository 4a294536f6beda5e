#pragma once

#include <QWidget>

#include <vector>

class QLabel;
class QVBoxLayout;

namespace app {

class MachinePanel;
class PatternChartWidget;

/**
 * Notes Chart or Waves Chart: for the machine view's current machine, a small histogram per
 * pattern of the notes (or waves) it uses and how often. A tool window that follows the current
 * machine and the song's edits.
 */
class PatternChartWindow : public QWidget
{
    Q_OBJECT
public:
    /** `waves` charts the wave parameter instead of the notes. */
    PatternChartWindow(MachinePanel& panel, bool waves);

    bool chartsWaves() const { return m_waves; }
    QLabel* summary() const { return m_summary; }
    const std::vector<PatternChartWidget*>& charts() const { return m_charts; }

    /** Draws the current machine's patterns as the song holds them now. */
    void refresh();

protected:
    /** Opened again after a while: show the song as it is now. */
    void showEvent(QShowEvent* event) override;

private:
    MachinePanel& m_panel;
    bool m_waves = false;
    QLabel* m_summary = nullptr;
    QWidget* m_content = nullptr;
    QVBoxLayout* m_chartLayout = nullptr;
    std::vector<PatternChartWidget*> m_charts;
};

} // namespace app
