#include "app/PatternGridPanel.h"

#include "app/PartSession.h"
#include "app/PatternCellText.h"
#include "app/PatternGridCommands.h"
#include "app/PatternGridDelegate.h"
#include "app/PatternGridModel.h"
#include "app/PatternGridView.h"
#include "app/PatternTrackHeader.h"
#include "app/UniformHeader.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QSettings>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

namespace {

const QString kStepKey = QStringLiteral("patternEditor/step");
const QString kDigitsKey = QStringLiteral("patternEditor/digitsPlayNotes");

// The keys, as the grid's tooltip shows them (the manual has the same table).
const char* const kKeysHelp =
    "<b>Pattern editor keys</b><table>"
    "<tr><td>1 &ndash; 7</td><td>chord note 1 &ndash; 7 (1 is the chord's first note)</td></tr>"
    "<tr><td>Z S X D C V G B H N J M</td><td>C C# D D# E F F# G G# A A# B in the entry octave"
    "</td></tr>"
    "<tr><td>Q 2 W 3 E R 5 T 6 Y 7 U</td><td>the same one octave higher (2 3 5 6 7 with "
    "&ldquo;Digits play notes&rdquo;; chord notes then on the keypad)</td></tr>"
    "<tr><td>O</td><td>off-event</td></tr>"
    "<tr><td>P or ?</td><td>chance on/off (the note sounds with even odds)</td></tr>"
    "<tr><td>+ / &minus;</td><td>shift the chord note two half-notes up / down; a fixed "
    "note's octave up / down</td></tr>"
    "<tr><td>.</td><td>clear the cell</td></tr>"
    "<tr><td>/ and *</td><td>entry octave down / up</td></tr>"
    "<tr><td>Enter, double-click</td><td>type the cell (3, ?2+, C#4, C#t, off)</td></tr>"
    "<tr><td>Del, Ctrl+Del</td><td>clear the selection, the pattern</td></tr>"
    "<tr><td>Ctrl+A, Ctrl+Shift+A</td><td>select all, the track</td></tr>"
    "<tr><td>Ctrl+C, Ctrl+X, Ctrl+V</td><td>copy, cut, paste</td></tr>"
    "<tr><td>Ctrl+M</td><td>track on/off</td></tr></table>";

} // namespace

PatternGridPanel::PatternGridPanel(PartSession& session, const ActionFactory::ActionLookup& actions,
                                   QWidget* parent)
    : QWidget(parent), m_session(session)
{
    setObjectName(QStringLiteral("patternEditor"));
    setAccessibleName(tr("Pattern editor"));

    m_model = new PatternGridModel(session, this);
    m_model->setObjectName(QStringLiteral("patternGridModel"));
    m_grid = new PatternGridView(this);
    m_grid->setObjectName(QStringLiteral("patternGrid"));
    m_grid->setAccessibleName(tr("Pattern grid"));
    m_grid->setAccessibleDescription(
        tr("The current pattern: 8 tracks by 64 rows. Digits enter chord notes, the letter rows "
           "fixed notes."));
    m_header = new PatternTrackHeader(m_grid);
    m_grid->setHorizontalHeader(m_header);
    m_grid->setVerticalHeader(new UniformHeader(Qt::Vertical, m_grid)); // the row numbers
    // Font and row height before the model: its 64 rows are laid out once, not three times.
    m_grid->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_grid->verticalHeader()->setDefaultSectionSize(m_grid->fontMetrics().height() + 4);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grid->setModel(m_model);
    m_grid->setItemDelegate(new PatternGridDelegate(m_grid));
    m_grid->setToolTip(tr(kKeysHelp));
    m_grid->setContextMenuPolicy(Qt::CustomContextMenu);
    m_grid->setCurrentIndex(m_model->index(0, 0));
    setFocusProxy(m_grid);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(createToolStrip());
    layout->addWidget(m_grid, 1);

    m_menu = ActionFactory::buildContextMenu("patternEditor", this, actions);
    m_menu->setAccessibleName(tr("Pattern editor commands"));
    connect(m_grid, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& point) { m_menu->popup(m_grid->viewport()->mapToGlobal(point)); });
    createHeaderMenu(actions);

    m_commands = new PatternGridCommands(*this);
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { updateCursorInfo(); });
    connect(m_model, &QAbstractItemModel::dataChanged, this, [this] { updateCursorInfo(); });
    connect(&m_session, &PartSession::playingPositionChanged, this, [this] { followPlayingRow(); });
    updateCursorInfo();
}

PatternGridPanel::~PatternGridPanel() = default;

QWidget* PatternGridPanel::createToolStrip()
{
    auto* strip = new QWidget(this);
    strip->setObjectName(QStringLiteral("patternToolStrip"));
    auto* row = new QHBoxLayout(strip);
    row->setContentsMargins(0, 0, 0, 0);

    const auto labelled = [strip, row](const QString& text, QWidget* field) {
        auto* label = new QLabel(text, strip);
        label->setBuddy(field);
        row->addWidget(label);
        row->addWidget(field);
    };
    QSettings settings;
    m_step = new QSpinBox(strip);
    m_step->setObjectName(QStringLiteral("patternStep"));
    m_step->setAccessibleName(tr("Cursor step"));
    m_step->setRange(0, kMaxStep);
    m_step->setValue(std::clamp(settings.value(kStepKey, 1).toInt(), 0, kMaxStep));
    m_step->setToolTip(tr("Rows the cursor moves down after an entry (0: it stays)."));
    labelled(tr("Step"), m_step);
    connect(m_step, &QSpinBox::valueChanged, this,
            [](int rows) { QSettings().setValue(kStepKey, rows); });

    m_octave = new QSpinBox(strip);
    m_octave->setObjectName(QStringLiteral("patternOctave"));
    m_octave->setAccessibleName(tr("Entry octave"));
    m_octave->setRange(0, 9);
    m_octave->setValue(m_session.defaultOctave());
    m_octave->setToolTip(tr("The octave of the notes the lower letter row enters (\"Def "
                            "Octave\"); the upper row enters one higher. / and * change it. At 0 "
                            "the lower row enters notes in the track's octave."));
    labelled(tr("Octave"), m_octave);
    connect(m_octave, &QSpinBox::valueChanged, this,
            [this](int octave) { m_session.setDefaultOctave(octave); });
    connect(&m_session, &PartSession::editorSettingsChanged, this,
            [this] { m_octave->setValue(m_session.defaultOctave()); });

    m_digitsPlayNotes = new QCheckBox(tr("Digits play notes"), strip);
    m_digitsPlayNotes->setObjectName(QStringLiteral("patternDigitsPlayNotes"));
    m_digitsPlayNotes->setAccessibleName(tr("Digits play notes"));
    m_digitsPlayNotes->setToolTip(tr("The digits 2 3 5 6 7 of the main row play the sharps of the "
                                     "upper key row; chord notes then come from the keypad."));
    row->addWidget(m_digitsPlayNotes);
    connect(m_digitsPlayNotes, &QCheckBox::toggled, this, [this](bool on) {
        m_grid->setDigitsPlayNotes(on);
        QSettings().setValue(kDigitsKey, on);
    });
    m_digitsPlayNotes->setChecked(settings.value(kDigitsKey, false).toBool());

    row->addStretch(1);
    m_previewNote = new QLabel(tr("Preview of the Math Window: Apply or close it there"), strip);
    m_previewNote->setObjectName(QStringLiteral("patternPreviewNote"));
    m_previewNote->setAccessibleName(tr("Preview"));
    m_previewNote->setToolTip(tr("The grid shows the pattern the Math Window would generate. "
                                 "The part is unchanged until you apply it; the grid takes no "
                                 "entries meanwhile."));
    m_previewNote->setStyleSheet(
        QStringLiteral("QLabel { background: rgb(150, 90, 210); color: white; padding: 1px 6px; "
                       "border-radius: 3px; }"));
    m_previewNote->hide();
    row->addWidget(m_previewNote);
    m_cursorInfo = new QLabel(strip);
    m_cursorInfo->setObjectName(QStringLiteral("patternCursorInfo"));
    m_cursorInfo->setAccessibleName(tr("Cursor cell"));
    row->addWidget(m_cursorInfo);
    return strip;
}

void PatternGridPanel::createHeaderMenu(const ActionFactory::ActionLookup& actions)
{
    m_headerMenu = ActionFactory::buildContextMenu("trackHeader", this, actions);
    m_headerMenu->setAccessibleName(tr("Track commands"));
    const QList<QAction*> toggles =
        m_headerMenu->findChildren<QAction*>(QStringLiteral("trackHeader.toggle"));
    for (QAction* toggle : toggles)
        toggle->setCheckable(true);
    connect(m_headerMenu, &QMenu::aboutToShow, this, [this, toggles] {
        const bool on = m_session.renderOptions().tracks[static_cast<std::size_t>(menuTrack())];
        for (QAction* toggle : toggles)
            toggle->setChecked(on);
    });
    connect(m_header, &QWidget::customContextMenuRequested, this, [this](const QPoint& point) {
        m_menuTrack = m_header->logicalIndexAt(point);
        if (m_menuTrack >= 0)
            m_headerMenu->popup(m_header->mapToGlobal(point));
    });
}

int PatternGridPanel::step() const
{
    return m_step->value();
}

void PatternGridPanel::setStep(int rows)
{
    m_step->setValue(rows);
}

bool PatternGridPanel::digitsPlayNotes() const
{
    return m_digitsPlayNotes->isChecked();
}

void PatternGridPanel::setDigitsPlayNotes(bool on)
{
    m_digitsPlayNotes->setChecked(on);
}

QRect PatternGridPanel::selectedRect() const
{
    QRect rect;
    for (const QItemSelectionRange& range : m_grid->selectionModel()->selection()) {
        rect |= QRect(QPoint(range.left(), range.top()), QPoint(range.right(), range.bottom()));
    }
    if (rect.isEmpty() && m_grid->currentIndex().isValid())
        rect = QRect(cursorTrack(), cursorRow(), 1, 1);
    return rect;
}

void PatternGridPanel::selectRect(const QRect& rect)
{
    const QRect area = rect.intersected(QRect(0, 0, part::kTrackCount, part::kRowCount));
    if (area.isEmpty())
        return;
    const QModelIndex topLeft = m_model->index(area.top(), area.left());
    QItemSelectionModel* selection = m_grid->selectionModel();
    selection->setCurrentIndex(topLeft, QItemSelectionModel::NoUpdate);
    selection->select(QItemSelection(topLeft, m_model->index(area.bottom(), area.right())),
                      QItemSelectionModel::ClearAndSelect);
}

void PatternGridPanel::moveCursorTo(int row, int track)
{
    const QModelIndex index = m_model->index(std::clamp(row, 0, part::kRowCount - 1),
                                             std::clamp(track, 0, part::kTrackCount - 1));
    m_grid->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    m_grid->scrollTo(index);
}

int PatternGridPanel::cursorRow() const
{
    const QModelIndex current = m_grid->currentIndex();
    return current.isValid() ? current.row() : 0;
}

int PatternGridPanel::cursorTrack() const
{
    const QModelIndex current = m_grid->currentIndex();
    return current.isValid() ? current.column() : 0;
}

int PatternGridPanel::menuTrack() const
{
    return m_menuTrack >= 0 && m_menuTrack < part::kTrackCount ? m_menuTrack : cursorTrack();
}

void PatternGridPanel::showPreview(const part::Pattern& pattern)
{
    m_model->setPreview(pattern);
    m_previewNote->show();
}

void PatternGridPanel::clearPreview()
{
    m_model->clearPreview();
    m_previewNote->hide();
}

bool PatternGridPanel::isPreviewing() const
{
    return m_model->hasPreview();
}

void PatternGridPanel::updateCursorInfo()
{
    const QModelIndex current = m_grid->currentIndex();
    m_cursorInfo->setText(current.isValid() ? current.data(Qt::AccessibleTextRole).toString()
                                            : QString());
}

void PatternGridPanel::followPlayingRow()
{
    // The marker is kept in sight while the user is not working in the grid.
    const int row = m_model->playingRow();
    if (row >= 0 && !m_grid->hasFocus())
        m_grid->scrollTo(m_model->index(row, cursorTrack()));
}

} // namespace app
