#pragma once

#include "app/UniformHeader.h"

namespace app {

/**
 * The pattern grid's track headers: each shows "Track N", the track's octave setting in words
 * and, at its right, the track's on/off switch. A click on the switch emits `switchClicked`; a
 * click elsewhere selects the track as usual. The model gives the header's facts
 * (PatternGridModel::TrackOnRole and TrackOctaveRole).
 */
class PatternTrackHeader : public UniformHeader
{
    Q_OBJECT
public:
    explicit PatternTrackHeader(QWidget* parent = nullptr);

    /** Where the switch of a section drawn in `section` sits. */
    static QRect switchRect(const QRect& section);
    /** The rectangle of a track's section in the header's own coordinates. */
    QRect sectionRect(int logicalIndex) const;

Q_SIGNALS:
    void switchClicked(int track);

protected:
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;
    QSize sectionSizeFromContents(int logicalIndex) const override;
    void mousePressEvent(QMouseEvent* event) override;
};

} // namespace app
