#include "LibGui/qt/zbgraphqt.h"

#include <QGraphicsEllipseItem>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QPainterPath>
#include <QResizeEvent>

#include <algorithm>

namespace Tervalon {

ZBGraphQt::ZBGraphQt(QWidget* parent) : QGraphicsView(parent), m_scene(new QGraphicsScene(this))
{
    setScene(m_scene);
    setRenderHint(QPainter::Antialiasing);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumSize(240, 160);
}

ZBGraphQt::~ZBGraphQt() = default;

void ZBGraphQt::set_source(const ZBTimeGraphSource& source, const QString& title)
{
    m_source = source;
    m_title = title;
    redraw();
}

void ZBGraphQt::resizeEvent(QResizeEvent* event)
{
    QGraphicsView::resizeEvent(event);
    redraw();
}

void ZBGraphQt::redraw()
{
    m_scene->clear();
    const QRectF area(0, 0, std::max(viewport()->width(), 100), std::max(viewport()->height(), 80));
    m_scene->setSceneRect(area);
    const QPalette colours = palette();
    const QColor text = colours.color(QPalette::Text);
    QColor grid = colours.color(QPalette::Mid);
    grid.setAlpha(90);
    const QColor line = colours.color(QPalette::Highlight);
    const QFontMetrics metrics(font());

    double top = 8;
    if (!m_title.isEmpty()) {
        QGraphicsSimpleTextItem* title = m_scene->addSimpleText(m_title, font());
        title->setBrush(text);
        title->setPos((area.width() - metrics.horizontalAdvance(m_title)) / 2, 4);
        top += metrics.height() + 4;
    }
    if (m_source.get_npoints() == 0) {
        const QString none = "No values to show.";
        QGraphicsSimpleTextItem* item = m_scene->addSimpleText(none, font());
        item->setBrush(text);
        item->setPos((area.width() - metrics.horizontalAdvance(none)) / 2, area.height() / 2);
        return;
    }

    m_graph.set_extents(m_source);
    std::vector<double> ticks;
    std::vector<std::string> labels;
    m_graph.get_y_axis(6, m_source, ticks, labels);
    int labelWidth = 0;
    for (const auto& label : labels)
        labelWidth = std::max(labelWidth, metrics.horizontalAdvance(QString::fromStdString(label)));
    const double left = labelWidth + 12;
    const double bottom = metrics.height() * 2 + 8;
    m_graph.set_dimensions(left, top + metrics.height() / 2.0, area.width() - left - 16,
                           area.height() - top - bottom);

    for (size_t i = 0; i < ticks.size(); ++i) {
        const double y = m_graph.toY(ticks[i]);
        m_scene->addLine(left, y, left + m_graph.get_width(), y, QPen(grid, 1));
        const QString label = QString::fromStdString(labels[i]);
        QGraphicsSimpleTextItem* item = m_scene->addSimpleText(label, font());
        item->setBrush(text);
        item->setPos(left - 6 - metrics.horizontalAdvance(label), y - metrics.height() / 2.0);
    }
    const double axisY = m_graph.get_top() + m_graph.get_height();
    m_scene->addLine(left, m_graph.get_top(), left, axisY, QPen(text, 1));
    m_scene->addLine(left, axisY, left + m_graph.get_width(), axisY, QPen(text, 1));

    QPainterPath path;
    const auto& data = m_source.get_data();
    // Labels no closer than their own width, so dates never overlap.
    double lastLabelEnd = -1e9;
    for (size_t i = 0; i < data.size(); ++i) {
        const QPointF at(m_graph.getDateX(m_source, data[i].m_date), m_graph.toY(data[i].m_value));
        if (i == 0)
            path.moveTo(at);
        else
            path.lineTo(at);
        QString label = QString::fromStdString(data[i].m_xLabel);
        if (label.isEmpty())
            label = QString::fromStdString(data[i].m_date.to_string("%d %b"));
        const double width = metrics.horizontalAdvance(label);
        const double x = std::min(std::max(at.x() - width / 2, 0.0), area.width() - width);
        if (x > lastLabelEnd + 8) {
            QGraphicsSimpleTextItem* item = m_scene->addSimpleText(label, font());
            item->setBrush(text);
            item->setPos(x, axisY + 4);
            m_scene->addLine(at.x(), axisY, at.x(), axisY + 3, QPen(text, 1));
            lastLabelEnd = x + width;
        }
    }
    m_scene->addPath(path, QPen(line, 2));
    for (const auto& point : data) {
        const QPointF at(m_graph.getDateX(m_source, point.m_date), m_graph.toY(point.m_value));
        QGraphicsEllipseItem* dot = m_scene->addEllipse(at.x() - 3.5, at.y() - 3.5, 7, 7, QPen(line, 1), QBrush(line));
        QString tip = QString::fromStdString(point.m_toolTip);
        if (tip.isEmpty())
            tip = QString::fromStdString(point.m_date.to_string() + ": " + m_source.value_to_string(point.m_value));
        dot->setToolTip(tip);
    }
}

} // namespace Tervalon
