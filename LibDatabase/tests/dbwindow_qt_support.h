#pragma once

#include "LibDatabase/tests/undo_support.h"
#include "LibDatabase/db/zblockfile.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibGui/qt/zbmessageboxqt.h"

#include <QApplication>
#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QLabel>
#include <QPushButton>

#include <string>
#include <vector>

namespace Tervalon {
namespace Test {

// The window tests answer the window's questions as a user would, by
// pressing the button with the caption; every question box is found by its
// title among the boxes on screen.
class DBWindowQt : public UndoFixture {
protected:
    void TearDown() override
    {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (qobject_cast<ZBMessageBoxQt*>(widget))
                widget->deleteLater();
        settle();
        UndoFixture::TearDown();
    }

    // Lets closed boxes and finished load steps go.
    static void settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The newest box on screen with the title; any title when empty.
    static ZBMessageBoxQt* find_box(const std::string& title)
    {
        settle();
        ZBMessageBoxQt* found = nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            ZBMessageBoxQt* box = qobject_cast<ZBMessageBoxQt*>(widget);
            if (box && box->isVisible() && (title.empty() || box->windowTitle().toStdString() == title))
                found = box;
        }
        return found;
    }

    static std::string box_text(ZBMessageBoxQt* box)
    {
        QLabel* label = box ? box->findChild<QLabel*>("messageText") : nullptr;
        return label ? label->text().toStdString() : std::string();
    }

    // The captions of the buttons shown, in order, without "Details".
    static std::vector<std::string> captions(ZBMessageBoxQt* box)
    {
        std::vector<std::string> out;
        for (int n = 0; box && box->get_button(n); ++n) {
            QPushButton* button = box->get_button(n);
            const std::string key = button->property("key").toString().toStdString();
            if (!button->isHidden() && !key.empty() && key != "Details")
                out.push_back(key);
        }
        return out;
    }

    static void press(ZBMessageBoxQt* box, const std::string& caption)
    {
        ASSERT_NE(box, nullptr) << "no box to press " << caption;
        QPushButton* button = box->get_button(QString::fromStdString(caption));
        ASSERT_NE(button, nullptr) << caption;
        ASSERT_FALSE(button->isHidden()) << caption;
        button->click();
        settle();
    }
};

} // namespace Test
} // namespace Tervalon
