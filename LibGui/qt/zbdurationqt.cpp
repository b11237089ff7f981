#include "LibGui/qt/zbdurationqt.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

ZBDurationQt::ZBDurationQt(QWidget* parent) : QLineEdit(parent)
{
    setPlaceholderText("e.g. 1:30 or 2 days");
    connect(this, &QLineEdit::editingFinished, this, [this]() { read_text(); });
}

void ZBDurationQt::set_duration(const ZBDuration& duration)
{
    m_duration = duration;
    setText(QString::fromStdString(duration.to_string()));
    setStyleSheet(QString());
    setToolTip(QString());
}

bool ZBDurationQt::check(std::string& message)
{
    ZBDuration duration;
    const std::string text = this->text().trimmed().toStdString();
    if (text.empty()) {
        m_duration = ZBDuration();
        return true;
    }
    int errors = get_zberror().get_nerrors();
    int result = duration.from_string(text);
    // The parser reports its own complaint; the field shows it instead.
    while (get_zberror().get_nerrors() > errors)
        get_zberror().clear_last_error();
    // The parser passes over words it does not know; a field with no number in it holds no duration.
    const bool hasNumber = text.find_first_of("0123456789") != std::string::npos;
    if (iszbwarn(result) || !hasNumber) {
        message = "\"" + text + "\" is not a duration, such as 1:30 or 2 days.";
        return false;
    }
    m_duration = duration;
    return true;
}

void ZBDurationQt::read_text()
{
    std::string message;
    if (check(message)) {
        setStyleSheet(QString());
        setToolTip(QString());
        emit duration_changed();
    } else {
        setStyleSheet("background-color: #f6d5d1;");
        setToolTip(QString::fromStdString(message));
    }
}

} // namespace Tervalon
