#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace Tervalon;

namespace {

// argv that outlives the ZBParam that points into it.
class Args {
public:
    explicit Args(std::vector<std::string> words) : m_words(std::move(words))
    {
        for (std::string& word : m_words)
            m_argv.push_back(&word[0]);
        m_argv.push_back(nullptr);
    }
    int argc() const { return int(m_words.size()); }
    char** argv() { return m_argv.data(); }

private:
    std::vector<std::string> m_words;
    std::vector<char*> m_argv;
};

std::unique_ptr<ZBParam> make_param(Args& args)
{
    std::unique_ptr<ZBParam> param(new ZBParam(args.argc(), args.argv(), "tervalon", "4.5.00",
                                               "A personal organiser.", "Tervalon", "The Tervalon team", "02-Dec-2023",
                                               "4.5.00", "TervalonDiary-4-5-00-15"));
    ZBParamOptionGroup* group = param->get_commandline().add_option_group("Planning");
    group->add_option("days", "Days to plan.", true);
    group->add_option("quiet", "Say less.");
    param->get_commandline().add_value("file", "The data file to open.");
    return param;
}

class ParamSources : public ::testing::Test {
protected:
    void TearDown() override { get_zberror().clear_all(); }
};

} // namespace

TEST_F(ParamSources, CommandLineWinsOverFilesAndLaterFilesOverEarlier)
{
    std::string dir = Tervalon::Test::make_temp_dir("param-order");
    Tervalon::Test::write_file(dir + "/site.cfg", "days=10\nquiet=1\n");
    Tervalon::Test::write_file(dir + "/user.cfg", "days=20\n");
    Args args({"tervalon", "--days", "30", "diary.zbd"});
    auto param = make_param(args);
    param->add_config_file(dir + "/site.cfg", false);
    param->add_config_file(dir + "/user.cfg");
    EXPECT_EQ("20", param->get_value("days"));
    std::ostringstream out;
    EXPECT_EQ(ZBErrC_ok, param->parse(out));
    EXPECT_EQ(ZBParam::E_ParseContinue, param->get_parse_result());
    EXPECT_EQ(-1, param->get_exit_status());
    EXPECT_EQ("30", param->get_value("days"));
    EXPECT_EQ("1", param->get_value("quiet"));
    EXPECT_EQ("diary.zbd", param->get_value("file"));
    EXPECT_EQ("", out.str());
}

TEST_F(ParamSources, ExtraArgsAreLeftForTheCaller)
{
    Args args({"tervalon", "-quiet", "-extra-args", "a", "--bogus", "b"});
    auto param = make_param(args);
    std::ostringstream out;
    EXPECT_EQ(ZBErrC_ok, param->parse(out));
    EXPECT_EQ((std::vector<std::string>{"a", "--bogus", "b"}), param->get_extra_args());
    EXPECT_EQ("1", param->get_value("quiet"));
    EXPECT_FALSE(param->is_set("file"));
}

TEST_F(ParamSources, StandardOptionsPrintAndShutDown)
{
    struct {
        const char* arg;
        const char* expected;
    } rows[] = {
        {"--help", "Usage: tervalon [options] [file]"},
        {"-h", "System options:"},
        {"--version", "tervalon 4.5.00\n  Build Tag:  TervalonDiary-4-5-00-15\n  Build Date: 02-Dec-2023\n"},
        {"--tag", "TervalonDiary-4-5-00-15\n"},
        {"--release", "4.5.00\n"},
        {"--man", ".SH SYNOPSIS"},
    };
    for (const auto& row : rows) {
        Args args({"tervalon", row.arg});
        auto param = make_param(args);
        std::ostringstream out;
        EXPECT_EQ(ZBErrC_okShutdown, param->parse(out)) << row.arg;
        EXPECT_EQ(0, param->get_exit_status());
        EXPECT_NE(std::string::npos, out.str().find(row.expected)) << row.arg << "\n" << out.str();
    }
}

TEST_F(ParamSources, HelpListsGroupsArgumentsAndHidesSystemValues)
{
    Args args({"tervalon"});
    auto param = make_param(args);
    std::string usage = param->get_usage();
    EXPECT_NE(std::string::npos, usage.find("Planning options:"));
    EXPECT_NE(std::string::npos, usage.find("--days ARG"));
    EXPECT_NE(std::string::npos, usage.find("Display this help page."));
    EXPECT_EQ(std::string::npos, usage.find("System Values"));
    std::ostringstream man;
    param->display_manpg(man);
    for (const char* section : {".SH NAME", ".SH DESCRIPTION", ".SH FILES", ".SH AUTHORS", "Written by ", "Copyright (c) "})
        EXPECT_NE(std::string::npos, man.str().find(section)) << section;
}

TEST_F(ParamSources, MistakesShowTheHelpAndAskForExitStatusOne)
{
    struct {
        std::vector<std::string> words;
        const char* message;
    } rows[] = {
        {{"tervalon", "--bogus"}, "Error: Invalid option --bogus"},
        {{"tervalon", "--days"}, "Error: Option --days requires a value"},
        {{"tervalon", "a.zbd", "b.zbd"}, "Error: Too many parameters (starting from b.zbd)."},
        {{"tervalon", "--System=x"}, "Error: Invalid option --System=x"},
    };
    for (const auto& row : rows) {
        Args args(row.words);
        auto param = make_param(args);
        std::ostringstream out;
        int result = param->parse(out);
        EXPECT_TRUE(iszberr(result));
        EXPECT_EQ(ZBParam::E_ParseExitFailure, param->get_parse_result());
        EXPECT_EQ(1, param->get_exit_status());
        EXPECT_EQ(0u, out.str().find(row.message)) << out.str();
        EXPECT_NE(std::string::npos, out.str().find("Usage: tervalon")) << out.str();
        get_zberror().clear_all();
    }
}

TEST_F(ParamSources, DeclarationsAreValidated)
{
    Args args({"tervalon"});
    auto param = make_param(args);
    param->get_commandline().add_option_group("More")->add_option("days", "Again.");
    std::ostringstream out;
    EXPECT_TRUE(iszberr(param->parse(out)));
    EXPECT_EQ(1, param->get_exit_status());
    auto second = make_param(args);
    second->get_commandline().add_value("other", "A second optional value.");
    EXPECT_TRUE(iszberr(second->validate()));
}

TEST_F(ParamSources, MandatoryValuesMustBeGiven)
{
    Args args({"tervalon"});
    ZBParam param(args.argc(), args.argv(), "tervalon", "1", "", "", "", "", "", "");
    param.get_commandline().add_value("file", "The file.", true);
    std::ostringstream out;
    EXPECT_TRUE(iszberr(param.parse(out)));
    EXPECT_NE(std::string::npos, out.str().find("Too few parameters (missing file)."));
}

TEST_F(ParamSources, EditorComesFromTheEnvironmentUnlessGiven)
{
    setenv("EDITOR", "nano", 1);
    Args plain({"tervalon"});
    auto param = make_param(plain);
    std::ostringstream out;
    param->parse(out);
    EXPECT_EQ("nano", param->get_editor());
    Args given({"tervalon", "--editor=emacs"});
    auto other = make_param(given);
    other->parse(out);
    EXPECT_EQ("emacs", other->get_editor());
    unsetenv("EDITOR");
    Args none({"tervalon"});
    EXPECT_EQ("vi", make_param(none)->get_editor());
}

TEST_F(ParamSources, AnOptionGivenForOneRunLeavesTheUsersLineInTheFile)
{
    std::string dir = Tervalon::Test::make_temp_dir("param-override");
    const std::string file = dir + "/user.cfg";
    Tervalon::Test::write_file(file, "days=20\nquiet=1\nSystem=PlanDays=14\n");
    Args args({"tervalon", "--days", "30"});
    auto param = make_param(args);
    param->add_config_file(file);
    std::ostringstream out;
    ASSERT_EQ(ZBErrC_ok, param->parse(out));
    EXPECT_EQ("30", param->get_value("days"));
    EXPECT_EQ(ZBErrC_ok, param->set_system_value("Hostname", "desk"));
    EXPECT_EQ("days=20\nquiet=1\nSystem=PlanDays=14\nSystem=Hostname=desk\n", Tervalon::Test::read_file(file));
}

TEST_F(ParamSources, AnOptionDeclaredAfterTheFileWasReadGetsItsValueAndKeepsItsLine)
{
    std::string dir = Tervalon::Test::make_temp_dir("param-late");
    const std::string file = dir + "/user.cfg";
    Tervalon::Test::write_file(file, "colour=blue\nshade=dark\nSystem=PlanDays=14\n");
    Args args({"tervalon", "--shade", "light"});
    auto param = make_param(args);
    param->add_config_file(file);
    // The application declares its own options only now, as the desktop program does.
    ZBParamOptionGroup* display = param->get_commandline().add_option_group("Display");
    display->add_option("colour", "The colour.", true);
    display->add_option("shade", "The shade.", true);
    std::ostringstream out;
    ASSERT_EQ(ZBErrC_ok, param->parse(out));
    EXPECT_EQ("blue", param->get_value("colour"));
    EXPECT_EQ("light", param->get_value("shade"));
    EXPECT_EQ(ZBErrC_ok, param->set_system_value("PlanDays", 15));
    EXPECT_EQ("colour=blue\nshade=dark\nSystem=PlanDays=15\n", Tervalon::Test::read_file(file));
}
