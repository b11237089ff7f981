#pragma once

#include "LibGui/base/zbmessagebox.h"
#include "LibObject/object/zbidlist.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <vector>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace Tervalon {

// The message box of the desktop. Its buttons are each one text with '#'
// options ("Yes#Default#Shortcut:y"); it never waits: it is shown, and the
// pressed button's caption arrives by signal, with the id, id list or key the
// caller gave. A "Details" button shows or hides the details in place. It
// deletes itself when closed.
class ZBMessageBoxQt : public QDialog, public ZBMessageBox {
    Q_OBJECT
public:
    enum E_Icon { E_NoIcon = 0, E_Information = 1, E_Question = 2, E_Warning = 3, E_Critical = 4 };
    enum E_Answer { E_AnswerNone = 0, E_AnswerId = 1, E_AnswerIdList = 2, E_AnswerKey = 3 };

    ZBMessageBoxQt(const QString& title, const QString& text, E_Icon icon, const std::vector<QString>& buttons,
                   const QString& details, QWidget* parent);
    ~ZBMessageBoxQt() override;

    // The general form: up to four buttons and a details text; the answer
    // goes to sig_complete_id when ids holds one id, sig_complete_idlist when
    // it holds more, else sig_complete_key with userKey.
    static ZBMessageBoxQt* start(const ZBIdList& ids, const QString& userKey, const QString& title, const QString& text,
                                 E_Icon icon, const QString& button1, const QString& button2 = QString(),
                                 const QString& button3 = QString(), const QString& button4 = QString(),
                                 const QString& details = QString(), QWidget* parent = nullptr);

    // The same with the answer going to a member of receiver, which gets the
    // pressed caption and the id.
    template <class R>
    static ZBMessageBoxQt* start(int id, R* receiver, void (R::*slot)(const QString&, int), const QString& title,
                                 const QString& text, E_Icon icon, const QString& button1,
                                 const QString& button2 = QString(), const QString& button3 = QString(),
                                 const QString& button4 = QString(), const QString& details = QString(),
                                 QWidget* parent = nullptr)
    {
        ZBIdList ids;
        ids.add(ZBId(id));
        ZBMessageBoxQt* box = start(ids, QString(), title, text, icon, button1, button2, button3, button4, details,
                                    parent);
        connect(box, &ZBMessageBoxQt::sig_complete_id, receiver, slot);
        return box;
    }

    template <class R>
    static ZBMessageBoxQt* question(R* receiver, void (R::*slot)(const QString&), const QString& title,
                                    const QString& text, const QString& button1, const QString& button2,
                                    const QString& button3 = QString(), QWidget* parent = nullptr)
    {
        ZBMessageBoxQt* box = start(ZBIdList(), QString(), title, text, E_Question, button1, button2, button3,
                                    QString(), QString(), parent);
        connect(box, &ZBMessageBoxQt::sig_complete_key, receiver,
                [receiver, slot](const QString& key, const QString&) { (receiver->*slot)(key); });
        return box;
    }

    // One "Ok" button; the answer, if wanted, goes to done.
    static ZBMessageBoxQt* information(const QString& title, const QString& text, QWidget* parent = nullptr,
                                       std::function<void(const QString&)> done = nullptr);

    // Applies one description to a button: hidden when empty.
    void setup_button(QPushButton* button, const QString& description);
    QPushButton* get_button(int n) const;
    QPushButton* get_button(const QString& caption) const;
    QPushButton* get_escape_button() const { return m_escape; }
    QPlainTextEdit* get_details() const { return m_details; }
    // Shows or hides the details in place; the box stays open.
    void handle_details();

signals:
    void sig_complete_id(const QString& key, int id);
    void sig_complete_idlist(const QString& key, const Tervalon::ZBIdList& ids);
    void sig_complete_key(const QString& key, const QString& userKey);

public slots:
    void reject() override;

private:
    void pressed(QPushButton* button);

    QLabel* m_icon;
    QLabel* m_text;
    QPlainTextEdit* m_details;
    std::vector<QPushButton*> m_button;
    QPushButton* m_escape = nullptr;
    E_Answer m_answer = E_AnswerNone;
    ZBIdList m_ids;
    QString m_userKey;
    bool m_answered = false;
};

} // namespace Tervalon
