#pragma once

#include "LibDatabase/qt/zbapplicationqt.h"

#include <string>

namespace Tervalon {

class ZBQtApp;

// The desktop diary application: the file named on the command line (or by
// the desktop), opened in its window when the event loop has started.
class AppDiary : public ZBApplicationQt {
    Q_OBJECT
public:
    AppDiary(ZBQtApp& qtApp, int argc, char** argv);
    ~AppDiary() override;

    int run() override;
    const std::string& get_diary_file() const { return m_diaryDB; }

private:
    std::string m_diaryDB;
};

} // namespace Tervalon
