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

    // Reads the command line before any window exists: -1 to go on, else the exit status.
    static int early_options(int argc, char** argv);
    // The diary named on the command line, as early_options read it; empty for none.
    static std::string diary_argument();
    // The folder given to --screenshots; empty for a normal run.
    static std::string screenshots_argument();
    static void declare_options(ZBParamCmdLine& cmdLine);
    int run() override;
    int parameters(ZBParam& param, ZBParamCmdLine* cmdLine, ZBParamFile* file) override;
    const std::string& get_diary_file() const { return m_diaryDB; }

private:
    int run_screenshots(const std::string& folder);

    std::string m_diaryDB;
};

} // namespace Tervalon
