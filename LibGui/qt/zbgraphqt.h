#pragma once

#include "LibGui/base/zbgraph.h"
#include "LibGui/base/zbtimegraphsource.h"

#include <QGraphicsView>

class QGraphicsScene;

namespace Tervalon {

// Draws one series over time on a graphics scene: a value axis with round
// ticks, date labels, the line and a dot per point whose tip tells its
// value. It redraws to fit when resized; the data stays in the source.
class ZBGraphQt : public QGraphicsView {
    Q_OBJECT
public:
    explicit ZBGraphQt(QWidget* parent = nullptr);
    ~ZBGraphQt() override;

    void set_source(const ZBTimeGraphSource& source, const QString& title = QString());
    const ZBTimeGraphSource& get_source() const { return m_source; }
    const ZBGraph& get_graph() const { return m_graph; }
    void redraw();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QGraphicsScene* m_scene;
    ZBTimeGraphSource m_source;
    ZBGraph m_graph;
    QString m_title;
};

} // namespace Tervalon
