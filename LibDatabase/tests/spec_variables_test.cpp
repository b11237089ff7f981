#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDate/date/zbdateutils.h"
#include "LibCore/error/zberror.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

std::string top_message()
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_details(ZBErrAsp_User) : std::string();
}

class SpecVariables : public ::testing::Test {
protected:
    void SetUp() override
    {
        get_zberror().clear_all();
        ASSERT_FALSE(iszbwarn(db.load("", false)));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }

    int add_spec(ZBDatabase& into, const std::string& name, const std::string& text)
    {
        int id = -1;
        EXPECT_FALSE(iszbwarn(into.add_objectspec(name, text, &id))) << top_message();
        return id;
    }
    int add_spec(const std::string& name, const std::string& text) { return add_spec(db, name, text); }
    ZBDBObject* add_object(ZBDatabase& into, int specId, ZBDBObject* parent = nullptr)
    {
        ZBDBObject* object = new ZBDBObject();
        EXPECT_FALSE(iszbwarn(into.add_object(object, parent ? parent : &into, "Object", "", specId, std::string())));
        EXPECT_FALSE(iszbwarn(into.apply_objectspec_to_db(*object, specId, false))) << top_message();
        return object;
    }
    ZBDBObject* add_object(int specId, ZBDBObject* parent = nullptr) { return add_object(db, specId, parent); }

    ZBDatabase db;
};

// Three generations of objects, so that "^" and "^^" both find something.
TEST_F(SpecVariables, SubstitutionModifiersAndParentWalk)
{
    const int top = add_spec("Top", "$<Name> = \"Grand Hall\";\n");
    const int mid = add_spec("Mid", "$<Name> = \"Wing\";\n$<Late> = prompt(\"draft\");\n");
    const int low = add_spec("Low", "$<Name> = \"Room 4\";\n$<Raw> = \"$<\";\n");
    ZBDBObject* grand = add_object(top);
    ZBDBObject* parent = add_object(mid, grand);
    ZBDBObject* object = add_object(low, parent);

    struct Row {
        const char* text;
        const char* result;
        bool finished;
    };
    const Row rows[] = {
        {"$<Name>", "Room 4", true},
        {"$<%UName>", "ROOM 4", true},
        {"$<%uName>", "ROOM 4", true},
        {"$<%LName>", "room 4", true},
        {"$<%lName>", "room 4", true},
        {"$<%XName>", "Room 4", true},
        {"$<^Name>/$<^^Name>", "Wing/Grand Hall", true},
        {"$<%U^^Name>", "GRAND HALL", true},
        {"[$<^^^^Name>] $<Name>", "[$<^^^^Name>] Room 4", false},
        {"$<Nope> and $<Name>", "$<Nope> and Room 4", false},
        {"$<^Late>", "$<^Late>", false},
        {"$<Raw>Name>", "$<Name>", true},
        {"no tags at all", "no tags at all", true},
        {"$<Name", "$<Name", true},
    };
    for (const Row& row : rows) {
        std::string text = row.text;
        const int result = object->apply_vars(text, true, nullptr);
        EXPECT_EQ(text, row.result) << row.text;
        EXPECT_EQ(result == ZBErrC_okFinished, row.finished) << row.text;
    }
    // Not the first time round, an unfinished variable gives its present value.
    std::string text = "$<^Late>";
    EXPECT_EQ(object->apply_vars(text, false, nullptr), ZBErrC_okFinished);
    EXPECT_EQ(text, "draft");
    // A text with a variable left over runs no expression.
    text = "$=(1+1) $<Nope>";
    EXPECT_EQ(object->apply_vars(text, true, nullptr), ZBErrC_okNotFinished);
    EXPECT_EQ(text, "$=(1+1) $<Nope>");
}

TEST_F(SpecVariables, AutoCountersKeepTheirWidth)
{
    struct Row {
        const char* start;
        const char* first;
        const char* second;
    };
    const Row rows[] = {{"007", "008", "009"}, {"099", "100", "101"}, {"9", "10", "11"}, {"0", "1", "2"}, {"0999", "1000", "1001"}};
    for (const Row& row : rows) {
        const int id = add_spec(std::string("Counter") + row.first, std::string("$<N> = auto(\"") + row.start + "\");\n");
        ZBDBObject* object = add_object(id);
        EXPECT_EQ(object->get_var_value("N"), row.start) << row.start;
        EXPECT_EQ(object->get_var_value("N", false, true), row.first) << row.start;
        EXPECT_EQ(object->get_var_value("N", false, true), row.second) << row.start;
        // A read without update, and recalculation, leave the count alone.
        EXPECT_EQ(object->get_var_value("N"), row.second) << row.start;
        object->update_vars();
        EXPECT_EQ(object->get_var_value("N"), row.second) << row.start;
    }
    // Each object counts for itself.
    const int id = add_spec("Ticket", "$<No> = auto(\"00\");\n");
    ZBDBObject* a = add_object(id);
    ZBDBObject* b = add_object(id);
    a->get_var_value("No", false, true);
    a->get_var_value("No", false, true);
    EXPECT_EQ(b->get_var_value("No", false, true), "01");
    EXPECT_EQ(a->get_var_value("No"), "02");
}

// Each variable uses one that is declared after it; eval is worked out again on
// every update, init only once.
TEST_F(SpecVariables, UpdateResolvesForwardReferencesAndKeepsInitValues)
{
    const int id = add_spec("Chain", "$<A> = eval(\"<$<B>>\");\n"
                                     "$<B> = eval(\"$<C>-$<%UD>\");\n"
                                     "$<First> = init(\"$<C>\");\n"
                                     "$<C> = eval(\"$=($<N> * 3)\");\n"
                                     "$<D> = \"d\";\n"
                                     "$<N> = prompt(\"2\");\n");
    ZBDBObject* object = add_object(id);
    EXPECT_EQ(object->update_vars(), ZBErrC_okNotFinished) << "the prompt waits for the user";
    ASSERT_FALSE(iszbwarn(object->set_var_value("N", "5")));
    EXPECT_EQ(object->update_vars(), ZBErrC_okFinished);
    EXPECT_EQ(object->get_var_value("C"), "15");
    EXPECT_EQ(object->get_var_value("B"), "15-D");
    EXPECT_EQ(object->get_var_value("A"), "<15-D>");
    EXPECT_EQ(object->get_var_value("First"), "15");

    ASSERT_FALSE(iszbwarn(object->set_var_value("N", "1")));
    ASSERT_FALSE(iszbwarn(object->set_var_value("D", "z")));
    EXPECT_EQ(object->update_vars(), ZBErrC_okFinished);
    EXPECT_EQ(object->get_var_value("A"), "<3-Z>");
    EXPECT_EQ(object->get_var_value("First"), "15");
}

TEST_F(SpecVariables, InheritanceThreeLevelsDeep)
{
    add_spec("Thing", "$<Name> = \"thing\";\n$<Kind> = \"generic\";\n$<Colour> = \"grey\";\n"
                      "$<Label> = eval(\"$<Kind>:$<Name>\");\n$[Part] = ${Thing}[];\n"
                      "@Script Show >\"thing()\"<;\n@Script Keep >\"keep()\"<;\n");
    add_spec("Tool", "inherits Thing;\n$<Kind> = \"tool\";\n$<Owner> = prompt(\"\");\n@Script Show >\"tool()\"<;\n");
    const int id = add_spec("Hammer", "inherits Tool;\n$<Name> = \"hammer\";\n$[Part] = ${Tool}[-];\n");
    ZBObjectSpec* spec = db.get_objectspec_by_id(id);
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(spec->get_varspec_by_name("Name")->get_spec(), "hammer");
    EXPECT_EQ(spec->get_varspec_by_name("Kind")->get_spec(), "tool");
    EXPECT_EQ(spec->get_varspec_by_name("Colour")->get_spec(), "grey");
    EXPECT_TRUE(spec->get_varspec_by_name("Owner")->is_prompt());
    EXPECT_TRUE(spec->get_varspec_by_name("Label")->is_derived());
    EXPECT_EQ(spec->get_script("Show")->m_script, "tool()");
    EXPECT_EQ(spec->get_script("Keep")->m_script, "keep()");
    ASSERT_NE(spec->get_child_by_name("Part"), nullptr);
    EXPECT_EQ(spec->get_child_by_name("Part")->m_specName, "Tool");
    EXPECT_FALSE(spec->get_child_by_name("Part")->m_array);
    EXPECT_TRUE(db.is_spec_derived_from(id, db.get_objectspec_by_name("Thing")->get_id()));

    ZBDBObject* object = add_object(id);
    EXPECT_EQ(object->get_var_value("Label"), "tool:hammer");

    // An edit to the grandparent reaches the grandchild's objects; its own values still win.
    const int thing = db.get_objectspec_by_name("Thing")->get_id();
    ASSERT_FALSE(iszbwarn(db.edit_objectspec(thing)));
    db.get_objectspec_by_id(thing)->set_text("$<Name> = \"thing\";\n$<Kind> = \"generic\";\n$<Colour> = \"red\";\n"
                                              "$<Label> = eval(\"$<Kind>/$<Name>/$<Colour>\");\n$[Part] = ${Thing}[];\n");
    ASSERT_FALSE(iszbwarn(db.commit_objectspec(thing))) << top_message();
    EXPECT_EQ(db.get_objectspec_by_id(id)->get_varspec_by_name("Colour")->get_spec(), "red");
    EXPECT_EQ(object->get_var_value("Label"), "tool/hammer/red");
    EXPECT_EQ(db.get_objectspec_by_id(id)->get_script("Keep"), nullptr);
}

TEST_F(SpecVariables, RenameFollowsEveryReference)
{
    const int base = add_spec("Base", "$<A> = \"1\";\n");
    add_spec("BaseLine", "$<L> = \"x\";\n");
    const int user = add_spec("User", "inherits Base;\ninherits BaseLine;\n$[Kid] = ${Base}[];\n"
                                      "$[Other] = ${BaseLine=Base}[];\n$<Note> = \"inherits Base here\";\n");
    ZBDBObject* object = add_object(user);

    ASSERT_FALSE(iszbwarn(db.rename_spec(base, "Root"))) << top_message();
    EXPECT_EQ(db.get_objectspec_by_name("Base"), nullptr);
    EXPECT_EQ(db.get_objectspec_by_id(base)->get_name(), "Root");
    EXPECT_EQ(db.get_objectspec_by_id(user)->get_text(),
              "inherits Root;\ninherits BaseLine;\n$[Kid] = ${Root}[];\n"
              "$[Other] = ${BaseLine=Root}[];\n$<Note> = \"inherits Root here\";\n");
    // The renamed texts parse, and the objects keep their spec and values.
    ASSERT_FALSE(iszbwarn(db.parse_objectspecs(true))) << top_message();
    EXPECT_TRUE(db.is_spec_derived_from(user, base));
    EXPECT_EQ(object->get_specid(), user);
    EXPECT_EQ(object->get_var_value("A"), "1");
    std::ostringstream out;
    db.export_specs(out);
    EXPECT_NE(out.str().find(std::string(72, '#') + "{Root}\n"), std::string::npos);

    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(db.rename_spec(base, "BaseLine")));
    EXPECT_TRUE(iszbwarn(db.rename_spec(base, "Bad Name")));
    EXPECT_EQ(db.get_objectspec_by_id(base)->get_name(), "Root");
    get_zberror().clear_all();
}

TEST_F(SpecVariables, ExportImportRoundTripIsExact)
{
    add_spec("Note", "# a note\n$<Body> = \"semi; colon\";\n@Script Go >\"\nrun(\"x\");\n\"<;\n");
    add_spec("Memo", "inherits Note;\n$<To> = prompt(\"\");");
    std::ostringstream first;
    ASSERT_FALSE(iszbwarn(db.export_specs(first)));

    const std::string dir = Tervalon::Test::make_temp_dir("specexport");
    const std::string file = dir + "/specs.zbo";
    Tervalon::Test::write_file(file, first.str());
    ZBDatabase other;
    ASSERT_FALSE(iszbwarn(other.load("", false)));
    std::vector<std::string> names;
    ASSERT_FALSE(iszbwarn(other.import_specs(file, &names))) << top_message();
    EXPECT_EQ(names, (std::vector<std::string>{"Note", "Memo"}));
    ASSERT_NE(other.get_objectspec_by_name("Memo"), nullptr);
    EXPECT_EQ(other.get_objectspec_by_name("Memo")->get_nvarspecs(), 2);
    EXPECT_EQ(other.get_objectspec_by_name("Note")->get_script("Go")->m_script, "run(\"x\");\n");
    std::ostringstream second;
    ASSERT_FALSE(iszbwarn(other.export_specs(second)));
    EXPECT_EQ(second.str(), first.str());

    // Importing over existing specs replaces their text; a fault anywhere in the
    // file changes nothing at all.
    const std::string sep(72, '#');
    std::istringstream update(sep + "{Memo}\n$<To> = \"all\";\n");
    ASSERT_FALSE(iszbwarn(other.import_specs(update, "u.zbo"))) << top_message();
    EXPECT_EQ(other.get_objectspec_by_name("Memo")->get_varspec_by_name("To")->get_spec(), "all");
    const int before = other.get_nobjects();
    std::istringstream bad(sep + "{Fresh}\n$<F> = \"1\";\n" + sep + "{Memo}\n$<To> = \"x\";\n" + sep + "{No Good}\n");
    EXPECT_TRUE(iszbwarn(other.import_specs(bad, "b.zbo")));
    EXPECT_EQ(other.get_objectspec_by_name("Fresh"), nullptr);
    EXPECT_EQ(other.get_objectspec_by_name("Memo")->get_text(), "$<To> = \"all\";\n");
    EXPECT_EQ(other.get_nobjects(), before);
    get_zberror().clear_all();
}

TEST_F(SpecVariables, LocateVarsAddsPromptsAndFillsTheClock)
{
    // Months and days count from 0: this is 9 February.
    ZBDateUtils::set_fixed_now(ZBDate(2026, 1, 8, 15, 4, 5, 0, ZBDate::C_GMT));
    const int id = add_spec("Letter", "$<Who> = \"Ann\";\n");
    ZBDBObject* object = add_object(id);
    ASSERT_FALSE(iszbwarn(object->locate_vars("Dear $<Who>, $<%UTopic> on $<DATE> at $<TIME> in $<YEAR>; $<^Up> $<bad tag>")));
    EXPECT_EQ(object->get_var_value("Who"), "Ann");
    ASSERT_NE(object->get_var_by_tag("Topic"), nullptr);
    EXPECT_TRUE(object->get_var_by_tag("Topic")->is_prompt());
    EXPECT_FALSE(object->get_var_by_tag("Topic")->is_initialised());
    EXPECT_EQ(object->get_var_value("DATE"), "09-Feb-2026");
    EXPECT_EQ(object->get_var_value("TIME"), "03:04:05 PM");
    EXPECT_EQ(object->get_var_value("YEAR"), "2026");
    EXPECT_EQ(object->get_var_by_tag("Up"), nullptr);
    EXPECT_EQ(object->get_var_by_tag("bad tag"), nullptr);
    EXPECT_EQ(object->get_nvars(), 5);
}

// Values with the characters the stored form escapes come back exactly.
TEST_F(SpecVariables, EscapedValuesSurviveSaveAndLoad)
{
    const std::string dir = Tervalon::Test::make_temp_dir("specescapes");
    const std::string file = dir + "/escapes.zbd";
    const std::vector<std::string> values = {
        "a # b",        "ends with #",   "#", "back\\slash", "trailing\\", "\\# both",
        "two\nlines\n", "\n",            "# \\ \n # x=y", "  padded  ", "A=1# B=2",   "tab\there",
    };
    std::vector<int> ids;
    {
        ZBDatabase saved;
        ASSERT_FALSE(iszbwarn(saved.load(file, true)));
        const int spec = add_spec(saved, "T", "$<V> = prompt(\"\");\n$<W> = eval(\"[$<V>]\");\n");
        for (const std::string& value : values) {
            ZBDBObject* object = add_object(saved, spec);
            ASSERT_FALSE(iszbwarn(object->set_var_value("V", value)));
            object->update_vars();
            ids.push_back(object->get_id());
        }
        ASSERT_FALSE(iszbwarn(saved.save(true, true, false))) << top_message();
        saved.unload();
    }
    const std::string text = Tervalon::Test::read_file(file);
    ZBDatabase loaded;
    ASSERT_FALSE(iszbwarn(loaded.load(file, false))) << top_message();
    for (size_t i = 0; i < values.size(); ++i) {
        ZBDBObject* back = loaded.get_object_by_id(ids[i]);
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->get_var_value("V"), values[i]) << i;
        EXPECT_EQ(back->get_var_value("W"), "[" + values[i] + "]") << i;
    }
    // Saving what was loaded writes the same file.
    ASSERT_FALSE(iszbwarn(loaded.save(true, true, false))) << top_message();
    loaded.unload();
    EXPECT_EQ(Tervalon::Test::read_file(file), text);
}

} // namespace
