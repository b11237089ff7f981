#include "LibGui/qt/zbbuttonboxqt.h"
#include "LibGui/qt/zbtreewidgetqt.h"
#include "tests/support/testsupport.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

// Ten projects of twenty tasks each; ids 1000+ are projects.
void fill(ZBTreeWidgetQt& tree, bool reversed)
{
    tree.start_refill();
    for (int p = 0; p < 10; ++p) {
        int project = reversed ? 9 - p : p;
        tree.add(1000 + project, {QString("Project %1").arg(project, 2, 10, QChar('0')), QString::number(project)});
        for (int t = 0; t < 20; ++t)
            tree.add(project * 20 + t, {QString("Task %1").arg(project * 20 + t, 3, 10, QChar('0')),
                                        QString::number(t)},
                     1000 + project);
    }
    tree.complete_refill();
}

} // namespace

TEST(TreeWidgetQt, RefillKeepsScrollSelectionAndExpansionAndIsSilent)
{
    ZBTreeWidgetQt tree;
    tree.setColumnCount(2);
    tree.setHeaderLabels({"Title", "Order"});
    tree.resize(300, 200);
    tree.show();
    fill(tree, false);
    for (int p = 0; p < 10; ++p)
        tree.set_expanded(1000 + p, true);
    tree.select_id(150);
    QTest::qWait(10);
    tree.verticalScrollBar()->setValue(tree.verticalScrollBar()->maximum() / 2);
    const int scroll = tree.verticalScrollBar()->value();
    ASSERT_GT(scroll, 0);
    tree.set_expanded(1003, false);

    QSignalSpy selected(&tree, &ZBTreeWidgetQt::idSelected);
    QSignalSpy qtSelected(&tree, &QTreeWidget::itemSelectionChanged);
    fill(tree, false);
    EXPECT_EQ(tree.verticalScrollBar()->value(), scroll);
    EXPECT_EQ(selected.count(), 0);
    EXPECT_EQ(qtSelected.count(), 0);
    EXPECT_EQ(tree.get_selected_ids(), std::vector<int>{150});
    EXPECT_TRUE(tree.get_item(1002)->isExpanded());
    EXPECT_FALSE(tree.get_item(1003)->isExpanded());
    EXPECT_FALSE(tree.did_selection_change());
    // A real pick still tells the view.
    tree.select_id(7);
    EXPECT_EQ(selected.count(), 1);
    EXPECT_EQ(selected[0][0].toInt(), 7);
}

TEST(TreeWidgetQt, RefillKeepsTheUsersSort)
{
    ZBTreeWidgetQt tree;
    tree.setColumnCount(2);
    tree.setSortingEnabled(true);
    tree.sortByColumn(0, Qt::DescendingOrder);
    fill(tree, false);
    EXPECT_EQ(tree.topLevelItem(0)->text(0), "Project 09");
    fill(tree, true);
    EXPECT_TRUE(tree.isSortingEnabled());
    EXPECT_EQ(tree.header()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(tree.topLevelItem(0)->text(0), "Project 09");
    EXPECT_EQ(tree.topLevelItem(9)->text(0), "Project 00");
}

TEST(TreeWidgetQt, ExportWritesRowsInDisplayOrderOrSaysWhyNot)
{
    ZBTreeWidgetQt tree;
    tree.setColumnCount(2);
    tree.setHeaderLabels({"Title", "Due"});
    tree.start_refill();
    tree.add(1, {"Home", ""});
    tree.add(2, {"Paint, then dry", "Fri"}, 1);
    tree.add(3, {"Work", "Mon"});
    tree.complete_refill();
    const std::string dir = Tervalon::Test::make_temp_dir("tree_export");
    ASSERT_FALSE(iszbwarn(tree.confirm_export_csv(dir + "/out.csv")));
    EXPECT_EQ(Tervalon::Test::read_file(dir + "/out.csv"), "Title,Due\nHome,\n\"  Paint, then dry\",Fri\nWork,Mon\n");

    Tervalon::Test::write_file(dir + "/plain", "x");
    get_zberror().clear_all();
    const std::string bad = dir + "/plain/out.csv";
    ASSERT_TRUE(iszbwarn(tree.confirm_export_csv(bad)));
    ASSERT_EQ(get_zberror().get_nerrors(), 1);
    EXPECT_EQ(get_zberror().top()->get_message(), "Could not create the file " + bad);
    get_zberror().clear_all();
}

TEST(TreeWidgetQt, MultipleSelectionButtonsAndTips)
{
    ZBTreeWidgetQt tree;
    tree.setColumnCount(1);
    ZBButtonBoxQt box;
    tree.multiselect_buttons(&box);
    fill(tree, false);
    QToolButton* multi = box.get_button("multiSelectButton");
    QToolButton* cancel = box.get_button("selectCancelButton");
    QToolButton* all = box.get_button("selectAllButton");
    ASSERT_TRUE(multi && cancel && all);
    EXPECT_EQ(multi->toolTip(), "Select multiple entries to work on.");
    EXPECT_EQ(cancel->toolTip(), "Cancel multiple selection.");
    EXPECT_EQ(all->toolTip(), "Select all/none entries.");
    EXPECT_TRUE(cancel->isHidden());

    multi->click();
    EXPECT_EQ(tree.get_mode(), ZBTreeWidgetQt::E_ModeMultiple);
    EXPECT_FALSE(cancel->isHidden());
    EXPECT_FALSE(tree.get_item(3)->icon(0).isNull());
    all->click();
    EXPECT_EQ(tree.get_selected_ids().size(), tree.get_all_items().size());
    all->click();
    EXPECT_TRUE(tree.get_selected_ids().empty());
    tree.get_item(3)->setSelected(true);
    tree.get_item(4)->setSelected(true);
    cancel->click();
    EXPECT_EQ(tree.get_mode(), ZBTreeWidgetQt::E_ModeSingle);
    EXPECT_EQ(tree.get_selected_ids().size(), 1u);
    EXPECT_TRUE(tree.get_item(3)->icon(0).isNull());
}
