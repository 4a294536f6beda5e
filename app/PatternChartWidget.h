#pragma once

#include <QString>
#include <QWidget>

#include <cstddef>
#include <vector>

namespace app {

/**
 * A small histogram of one pattern: a bar per note (or wave) it uses, as high as the number of
 * cells that hold it, the count above and the note below. Bars of one window share a scale, so
 * that patterns compare at a glance. Its accessible description reads the same counts.
 */
class PatternChartWidget : public QWidget
{
    Q_OBJECT
public:
    struct Bar
    {
        QString label; // "C-4", "off", "01"
        std::size_t count = 0;
        bool special = false; // note-offs: drawn in another colour
        QString detail;       // for the tooltip and description (a wave's name)
    };

    /** `scale` is the count that fills the height (the largest of the window). */
    PatternChartWidget(QString title, std::vector<Bar> bars, std::size_t scale,
                       QWidget* parent = nullptr);

    const std::vector<Bar>& bars() const { return m_bars; }
    /** "C-4: 3, E-4: 2"; "nothing" for an empty pattern. */
    QString describe() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_title;
    std::vector<Bar> m_bars;
    std::size_t m_scale = 1;
};

} // namespace app
