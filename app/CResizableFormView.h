#pragma once

#include <QWidget>

#include <vector>

class QSettings;
class QSplitter;

namespace app {

/**
 * A form whose regions are divided by splitters; the splitter positions are kept between runs
 * under the splitters' object names.
 */
class CResizableFormView : public QWidget
{
    Q_OBJECT
public:
    explicit CResizableFormView(QWidget* parent = nullptr);

    void saveLayout(QSettings& settings) const;
    void restoreLayout(QSettings& settings);

protected:
    /** Creates a splitter whose sizes are remembered; `name` must be unique in the form. */
    QSplitter* createSplitter(Qt::Orientation orientation, const QString& name, QWidget* parent);

private:
    std::vector<QSplitter*> m_splitters;
};

} // namespace app
