#pragma once

#include "app/ActionFactory.h"

#include <QRect>
#include <QWidget>

class QCheckBox;
class QLabel;
class QMenu;
class QSpinBox;

namespace part {
class Pattern;
}

namespace app {

class PartSession;
class PatternGridCommands;
class PatternGridModel;
class PatternGridView;
class PatternTrackHeader;

/**
 * The pattern editor region: the part's current pattern as a grid of 8 tracks by 64 rows,
 * edited from the keyboard like a tracker and with the mouse, with its context menu
 * ("patternEditor") and the track headers' menu ("trackHeader", for commands on whole tracks).
 * Above the grid sit the cursor step, the entry octave ("Def Octave") and the digit mode.
 * Every change goes through the part session as a live edit ("Edit pattern", "Pattern cut",
 * "Pattern paste"); the commands live in `commands()`.
 */
class PatternGridPanel : public QWidget
{
    Q_OBJECT
public:
    static constexpr int kMaxStep = 16;

    /** `actions` resolves the frame's commands by id (none of the grid's are the frame's). */
    PatternGridPanel(PartSession& session, const ActionFactory::ActionLookup& actions,
                     QWidget* parent = nullptr);
    ~PatternGridPanel() override;

    PartSession& session() const { return m_session; }
    PatternGridView* grid() const { return m_grid; }
    PatternGridModel* model() const { return m_model; }
    PatternTrackHeader* trackHeader() const { return m_header; }
    QMenu* contextMenu() const { return m_menu; }
    QMenu* trackHeaderMenu() const { return m_headerMenu; }
    PatternGridCommands& commands() const { return *m_commands; }

    /** Rows the cursor moves down after an entry, 0..kMaxStep (0: it stays). */
    int step() const;
    void setStep(int rows);
    /** Whether the main row's digits play the upper octave's sharps instead of chord notes. */
    bool digitsPlayNotes() const;
    void setDigitsPlayNotes(bool on);

    /**
     * The selected rectangle, x over tracks 0..7 and y over rows 0..63; the cursor's cell when
     * nothing is selected; empty without a cursor.
     */
    QRect selectedRect() const;
    /** Selects `rect` (cut to the pattern) and puts the cursor on its top left. */
    void selectRect(const QRect& rect);
    /** Puts the cursor on a cell and selects it alone. */
    void moveCursorTo(int row, int track);
    /** The cursor's row and track, (0, 0) when there is none. */
    int cursorRow() const;
    int cursorTrack() const;
    /** The track the header menu acts on: the one right-clicked last, else the cursor's. */
    int menuTrack() const;

    /**
     * Shows `pattern` in the grid in place of the current pattern, tinted and read-only, with a
     * note above the grid, until clearPreview(). The part is not touched.
     */
    void showPreview(const part::Pattern& pattern);
    void clearPreview();
    bool isPreviewing() const;
    QLabel* previewNote() const { return m_previewNote; }

private:
    QWidget* createToolStrip();
    void createHeaderMenu(const ActionFactory::ActionLookup& actions);
    void updateCursorInfo();
    void followPlayingRow();

    PartSession& m_session;
    PatternGridModel* m_model = nullptr;
    PatternGridView* m_grid = nullptr;
    PatternTrackHeader* m_header = nullptr;
    QMenu* m_menu = nullptr;
    QMenu* m_headerMenu = nullptr;
    QSpinBox* m_step = nullptr;
    QSpinBox* m_octave = nullptr;
    QCheckBox* m_digitsPlayNotes = nullptr;
    QLabel* m_cursorInfo = nullptr;
    QLabel* m_previewNote = nullptr;
    PatternGridCommands* m_commands = nullptr;
    int m_menuTrack = -1;
};

} // namespace app
