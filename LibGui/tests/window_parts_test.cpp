#include "LibGui/qt/zbdialogqt.h"
#include "LibGui/qt/zbgraphqt.h"
#include "LibGui/qt/zbmainwindowqt.h"
#include "LibGui/qt/zbmessageboxqt.h"
#include "LibGui/qt/zbwidgetcontainerqt.h"
#include "LibGui/qt/zbwidgetqt.h"
#include "LibGui/qt/zbwindowqt.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGraphicsSimpleTextItem>
#include <QPushButton>
#include <QSplitter>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Tervalon;

namespace {

class CountingMain : public ZBMainWindowQt {
public:
    int update_data() override { ++m_data; return ZBErrC_ok; }
    int update_display() override { ++m_display; return ZBErrC_ok; }
    bool update_data_needed() override { return false; }
    int m_data = 0, m_display = 0;
};

// A page that records what its frame asked of it.
class RecordingPage : public ZBWidgetQt {
public:
    int validate_display() override { ++m_validated; return m_ok ? ZBErrC_ok : zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "No"); }
    int read_display(bool final) override { m_read += final ? 1 : 0; return ZBErrC_ok; }
    int cancel_display() override { ++m_cancelled; return ZBErrC_ok; }
    int m_validated = 0, m_read = 0, m_cancelled = 0;
    bool m_ok = true;
};

std::vector<std::string> scene_texts(ZBGraphQt& graph)
{
    std::vector<std::string> texts;
    for (QGraphicsItem* item : graph.scene()->items())
        if (auto* text = dynamic_cast<QGraphicsSimpleTextItem*>(item))
            texts.push_back(text->text().toStdString());
    return texts;
}

bool has_text(const std::vector<std::string>& texts, const std::string& wanted)
{
    return std::find(texts.begin(), texts.end(), wanted) != texts.end();
}

} // namespace

TEST(WidgetQt, PagesHandTheirRequestsToTheirWindow)
{
    CountingMain window;
    ZBWidgetQt* page = new ZBWidgetQt;
    window.setCentralWidget(page);
    EXPECT_EQ(page->get_window(), &window);
    EXPECT_EQ(ZBWindowQt::parent_main_window(page), &window);
    EXPECT_EQ(ZBWindowQt::parent_dialog(page), nullptr);
    page->request_update_display(true);
    EXPECT_EQ(window.m_display, 1);
    page->delayed_update_display();
    EXPECT_TRUE(window.is_update_pending());
    EXPECT_FALSE(page->is_update_pending());
    for (int i = 0; i < 100 && window.is_update_pending(); ++i)
        QTest::qWait(10);
    EXPECT_EQ(window.m_display, 2);
}

TEST(WidgetContainerQt, OkChecksAndReadsThePageCancelDropsIt)
{
    RecordingPage* page = new RecordingPage;
    ZBWidgetContainerQt frame("Note", page);
    frame.set_restore_geom(false);
    EXPECT_EQ(frame.objectName(), "container");
    EXPECT_TRUE(page->is_container());
    EXPECT_EQ(ZBWindowQt::parent_dialog(page), &frame);
    frame.show_dialog();

    page->m_ok = false;
    frame.get_buttons()->button(QDialogButtonBox::Ok)->click();
    EXPECT_EQ(page->m_validated, 1);
    EXPECT_EQ(page->m_read, 0);
    EXPECT_TRUE(frame.isVisible()) << "a page that fails its check keeps the frame open";
    get_zberror().clear_all();

    page->m_ok = true;
    QTest::keyClick(&frame, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(page->m_read, 1);
    EXPECT_EQ(frame.result(), QDialog::Accepted);

    frame.show_dialog();
    frame.get_buttons()->button(QDialogButtonBox::Cancel)->click();
    EXPECT_EQ(page->m_cancelled, 1);
    EXPECT_EQ(frame.result(), QDialog::Rejected);
}

TEST(MessageBoxQt, InformationHasOneOkThatEscAlsoPresses)
{
    QString answer;
    ZBMessageBoxQt* box = ZBMessageBoxQt::information("Done", "The file was exported.", nullptr,
                                                      [&answer](const QString& key) { answer = key; });
    ASSERT_NE(box->get_button("Ok"), nullptr);
    EXPECT_TRUE(box->get_button("Ok")->isDefault());
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_EQ(answer, "Ok");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST(WindowQt, SplitterSizesComeBackOnlyWhenTheyFit)
{
    const std::string config = Tervalon::Test::make_temp_dir("splitter") + "/test.cfg";
    ZBParam* param = new ZBParam();
    set_zbparam(param);
    param->add_config_file(config);

    QWidget window;
    window.setObjectName("mainWin");
    window.resize(600, 400);
    QSplitter* splitter = new QSplitter(&window);
    splitter->setObjectName("mainSplitter");
    splitter->addWidget(new QWidget);
    splitter->addWidget(new QWidget);
    splitter->resize(600, 400);
    splitter->setSizes({400, 200});
    const QList<int> saved = splitter->sizes();
    ZBWindowQt::store_splitter(splitter);
    const std::string stored = zbparam().get_system_value("mainWin.mainSplitter.splitter");
    EXPECT_NE(stored.find(','), std::string::npos);
    EXPECT_EQ(stored.back() == ',', false);

    splitter->setSizes({100, 500});
    EXPECT_EQ(ZBWindowQt::restore_splitter(splitter), ZBErrC_ok);
    EXPECT_EQ(splitter->sizes(), saved);

    zbparam().set_system_value("mainWin.mainSplitter.splitter", "100,200,300");
    splitter->setSizes({250, 350});
    const QList<int> before = splitter->sizes();
    EXPECT_EQ(ZBWindowQt::restore_splitter(splitter), ZBErrC_okCancel);
    EXPECT_EQ(splitter->sizes(), before);
}

TEST(WindowQt, ComboLoadsWithoutSignalsAndSelectsTheId)
{
    QComboBox combo;
    int emitted = 0;
    QObject::connect(&combo, QOverload<int>::of(&QComboBox::currentIndexChanged), [&emitted]() { ++emitted; });
    ZBWindowQt::load_combo(&combo, {{-3, "Unassigned"}, {4, "Ann"}, {9, "Bo"}}, 9);
    EXPECT_EQ(emitted, 0);
    EXPECT_EQ(combo.count(), 3);
    EXPECT_EQ(combo.currentText(), "Bo");
    EXPECT_EQ(combo.currentData().toInt(), 9);
}

TEST(GraphQt, DrawsAxisLabelsAndSaysWhenThereIsNothing)
{
    ZBGraphQt graph;
    graph.resize(500, 300);
    ZBTimeGraphSource empty;
    graph.set_source(empty, "Weight");
    EXPECT_TRUE(has_text(scene_texts(graph), "No values to show."));

    ZBTimeGraphSource source;
    source.set_value_type(ZBGraphSource::E_Integer);
    for (int d = 0; d < 5; ++d)
        source.add(ZBDate(2026, 0, 10 + d, 12, 0, 0, 0, ZBDate::C_GMT), 70 + d * 5, "", "d" + std::to_string(d));
    source.complete();
    graph.set_source(source, "Weight");
    std::vector<std::string> texts = scene_texts(graph);
    EXPECT_TRUE(has_text(texts, "Weight"));
    EXPECT_TRUE(has_text(texts, "70"));
    EXPECT_TRUE(has_text(texts, "90"));
    EXPECT_TRUE(has_text(texts, "d0"));
    EXPECT_FALSE(has_text(texts, "No values to show."));
    // Every point is inside the drawing area.
    const ZBGraph& g = graph.get_graph();
    for (const auto& point : source.get_data()) {
        const double x = g.getDateX(source, point.m_date);
        const double y = g.toY(point.m_value);
        EXPECT_GE(x, g.get_left());
        EXPECT_LE(x, g.get_left() + g.get_width());
        EXPECT_GE(y, g.get_top());
        EXPECT_LE(y, g.get_top() + g.get_height());
    }
}
