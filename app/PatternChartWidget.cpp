#include "app/PatternChartWidget.h"

#include <QPainter>
#include <QPalette>

#include <algorithm>

namespace app {

namespace {

constexpr int kMargin = 6;
constexpr int kBarWidth = 26;
constexpr int kBarGap = 6;
constexpr int kChartHeight = 64; // pixels for the largest count
constexpr int kMinStep = 28;     // a bar and its gap at the least: room for "C#4"

} // namespace

PatternChartWidget::PatternChartWidget(QString title, std::vector<Bar> bars, std::size_t scale,
                                       QWidget* parent)
    : QWidget(parent), m_title(std::move(title)), m_bars(std::move(bars)),
      m_scale(std::max<std::size_t>(scale, 1))
{
    setObjectName(QStringLiteral("patternChart"));
    setAccessibleName(tr("Pattern %1").arg(m_title));
    setAccessibleDescription(describe());
    setToolTip(m_title + QStringLiteral(": ") + describe());
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QString PatternChartWidget::describe() const
{
    if (m_bars.empty())
        return tr("nothing");
    QStringList parts;
    for (const Bar& bar : m_bars) {
        const QString label =
            bar.detail.isEmpty() ? bar.label : bar.label + QLatin1Char(' ') + bar.detail;
        parts << QStringLiteral("%1: %2").arg(label).arg(bar.count);
    }
    return parts.join(QStringLiteral(", "));
}

QSize PatternChartWidget::sizeHint() const
{
    const int lineHeight = fontMetrics().height();
    const int bars = std::max<int>(static_cast<int>(m_bars.size()), 4);
    return {2 * kMargin + bars * (kBarWidth + kBarGap),
            2 * kMargin + 3 * lineHeight + kChartHeight};
}

QSize PatternChartWidget::minimumSizeHint() const
{
    // Never so narrow that the labels run into each other; the window scrolls instead.
    return {std::max(160, 2 * kMargin + static_cast<int>(m_bars.size()) * kMinStep),
            sizeHint().height()};
}

void PatternChartWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPalette& colours = palette();
    painter.fillRect(rect(), colours.base());
    const QFontMetrics metrics = fontMetrics();
    const int line = metrics.height();

    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(colours.color(QPalette::Text));
    painter.drawText(QRect(kMargin, kMargin, width() - 2 * kMargin, line),
                     Qt::AlignLeft | Qt::AlignVCenter, m_title);
    painter.setFont(font());
    if (m_bars.empty()) {
        painter.setPen(colours.color(QPalette::PlaceholderText));
        painter.drawText(QRect(kMargin, kMargin + line, width() - 2 * kMargin, kChartHeight),
                         Qt::AlignCenter, tr("no entries"));
        return;
    }

    // Bars narrow down to fit the width, but never below a readable size.
    const int available = width() - 2 * kMargin;
    const int count = static_cast<int>(m_bars.size());
    const int step = std::clamp(available / count, kMinStep, kBarWidth + kBarGap);
    const int barWidth = step - kBarGap;
    const int baseline = kMargin + 2 * line + kChartHeight;
    painter.setPen(colours.color(QPalette::Mid));
    painter.drawLine(kMargin, baseline, kMargin + count * step, baseline);

    const QColor bar = colours.color(QPalette::Highlight);
    const QColor special = colours.color(QPalette::Mid);
    for (int i = 0; i < count; ++i) {
        const Bar& b = m_bars[static_cast<std::size_t>(i)];
        const int height =
            std::max<int>(1, static_cast<int>(static_cast<double>(b.count) * kChartHeight /
                                              static_cast<double>(m_scale)));
        const int x = kMargin + i * step + (step - barWidth) / 2;
        painter.fillRect(QRect(x, baseline - height, barWidth, height), b.special ? special : bar);
        painter.setPen(colours.color(QPalette::Text));
        painter.drawText(QRect(kMargin + i * step, baseline - height - line, step, line),
                         Qt::AlignHCenter | Qt::AlignBottom, QString::number(b.count));
        painter.drawText(QRect(kMargin + i * step, baseline + 2, step, line),
                         Qt::AlignHCenter | Qt::AlignTop, b.label);
    }
}

} // namespace app
