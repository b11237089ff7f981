#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbspecparser.h"
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

class ObjectSpecs : public ::testing::Test {
protected:
    void SetUp() override
    {
        get_zberror().clear_all();
        ASSERT_FALSE(iszbwarn(db.load("", false)));
    }
    void TearDown() override { get_zberror().clear_all(); }

    int add_spec(const std::string& name, const std::string& text)
    {
        int id = -1;
        EXPECT_FALSE(iszbwarn(db.add_objectspec(name, text, &id))) << top_message();
        return id;
    }
    ZBDBObject* add_object(int specId, ZBDBObject* parent = nullptr)
    {
        ZBDBObject* object = new ZBDBObject();
        EXPECT_FALSE(iszbwarn(db.add_object(object, parent ? parent : &db, "Object", "", specId, std::string())));
        EXPECT_FALSE(iszbwarn(db.apply_objectspec_to_db(*object, specId, false))) << top_message();
        return object;
    }

    ZBDatabase db;
};

TEST(SpecParser, StatementsGiveTheirDeclarations)
{
    get_zberror().clear_all();
    ZBObjectSpec spec("Person",
                      "# people\n"
                      "$<Name> = \"Anon; the first\";\n"
                      "$<Phone:Home> = prompt(\"\");\n"
                      "$<Label> = eval(\"$<Name>!\");\n"
                      "$<Made> = init(\"x\");\n"
                      "$<Number> = auto(\"007\");\n"
                      "private $<Made> $<Number>;\n"
                      "constrain $<Name> choice \"Anon; the first|Bob\";\n"
                      "$[Address] = ${Place=Home}[^];\n"
                      "$[Photo] = ${Image}[-];\n"
                      "baseOnly;\n"
                      "@Script on_edit >\"\nlet a = \"x\";\n\"<;\n"
                      "@Script Mail @Shortcut M >\"go()\"<;\n");
    ASSERT_FALSE(iszbwarn(spec.parse())) << top_message();
    ASSERT_EQ(spec.get_nvarspecs(), 5);
    EXPECT_EQ(spec.get_varspec_by_name("Name")->get_spec(), "Anon; the first");
    EXPECT_EQ(spec.get_varspec_by_name("Name")->get_constraint(), ZBVarSpec::E_Choice);
    EXPECT_TRUE(spec.get_varspec_by_name("Phone:Home")->is_prompt());
    EXPECT_FALSE(spec.get_varspec_by_name("Phone:Home")->is_derived());
    EXPECT_EQ(spec.get_nassoc("Phone"), 1);
    EXPECT_EQ(spec.get_assoc_by_index("Phone", 0)->get_assoc(), "Home");
    EXPECT_TRUE(spec.get_varspec_by_name("Label")->is_derived());
    EXPECT_FALSE(spec.get_varspec_by_name("Made")->is_derived());
    EXPECT_TRUE(spec.get_varspec_by_name("Made")->is_private());
    EXPECT_TRUE(spec.get_varspec_by_name("Number")->is_auto());
    ASSERT_EQ(spec.get_nchildren(), 2);
    const ZBObjectSpecChild* address = spec.get_child_by_name("Address");
    EXPECT_EQ(address->m_specName, "Place");
    EXPECT_EQ(address->m_defaultSpecName, "Home");
    EXPECT_TRUE(address->m_array && address->m_addCreate && !address->m_mandatory);
    const ZBObjectSpecChild* photo = spec.get_child_by_name("Photo");
    EXPECT_TRUE(!photo->m_array && !photo->m_mandatory);
    EXPECT_TRUE(spec.is_base_only());
    ASSERT_NE(spec.get_script("on_edit"), nullptr);
    // The line feed straight after the opening mark is not part of the script.
    EXPECT_EQ(spec.get_script("on_edit")->m_script, "let a = \"x\";\n");
    EXPECT_EQ(spec.get_script("Mail")->m_shortcut, "M");
}

TEST(SpecParser, ChildSuffixes)
{
    struct Row {
        const char* suffix;
        bool array, mandatory, addCreate;
    };
    const Row rows[] = {{"", false, true, false}, {"[]", true, false, false}, {"[+]", true, true, false},
                        {"[^]", true, false, true}, {"[-]", false, false, false}};
    for (const Row& row : rows) {
        ZBObjectSpec spec("S", std::string("$[C] = ${X}") + row.suffix + ";");
        ASSERT_FALSE(iszbwarn(spec.parse())) << row.suffix;
        const ZBObjectSpecChild* child = spec.get_child_by_index(0);
        EXPECT_EQ(child->m_array, row.array) << row.suffix;
        EXPECT_EQ(child->m_mandatory, row.mandatory) << row.suffix;
        EXPECT_EQ(child->m_addCreate, row.addCreate) << row.suffix;
    }
}

// Each fault names the spec and the line of the statement, and is the first line of the message.
TEST(SpecParser, FaultsAndTheirLines)
{
    struct Row {
        const char* text;
        int line;
        const char* message;
    };
    const Row rows[] = {
        {"$<A> = \"1\";\nfoo;", 2, "S:2: error Unknown symbol \"foo\"."},
        {"\n\n$<A> = \"1\"", 3, "S:3: error Unterminated line (must end with \";\")."},
        {"$<A> = \"unclosed;\n$<B> = \"2\";", 1, "S:1: error invalid assignment - Missing \"\"\""},
        {"$<-A> = \"1\";", 1, "S:1: error Invalid variable name."},
        {"$<A:> = \"1\";", 1, "S:1: error Invalid associative name."},
        {"$<A = \"1\";", 1, "S:1: error Unterminated variable name."},
        {"$<A> \"1\";", 1, "S:1: error missing variable assignment."},
        {"$<A> = later(\"1\");", 1, "S:1: error invalid value \"later\" after assignment."},
        {"$<A> = eval(\"1\";", 1, "S:1: error invalid assignment - Missing \")\""},
        {"$[-] = ${X};", 1, "S:1: error Invalid child name."},
        {"$[C = ${X};", 1, "S:1: error Unterminated child name."},
        {"$[C] = X;", 1, "S:1: error Missing spec name for child (\"X\" instead)."},
        {"$[C] = ${X=};", 1, "S:1: error Invalid default spec name."},
        {"$[C] = ${X;", 1, "S:1: error Unterminated spec name."},
        {"private A;", 1, "S:1: error private should be followed by a variable name."},
        {"$<A> = \"\";\nprivate $<A>", 2, "S:2: error missing end of line."},
        {"constrain $<B> int;", 1, "S:1: error Could not find the variable B."},
        {"$<A> = \"\";\nconstrain $<A> colour;", 2, "S:2: error Unknown constrain type colour"},
        {"$<A> = \"\";\n\nconstrain $<A> int \"9..1\";", 3, "S:3: error No value can meet the constraint on A: The range 9..1 holds no value."},
        {"$<A> = \"\";\nconstrain $<A> choice \"\";", 2, "S:2: error No value can meet the constraint on A: A choice needs at least one value (\"A|B|C\")."},
        {"inherits ;", 1, "S:1: error The inherits keyword should be followed by the name of an object spec."},
        {"@Script ;", 1, "S:1: error @Script should be followed by the script name."},
        {"@Script X go;", 1, "S:1: error @Script should be followed by NAME >\" SCRIPT \"<"},
        {"@Script X >\"go()", 1, "S:1: error invalid assignment - Missing \"\"\""},
    };
    for (const Row& row : rows) {
        get_zberror().clear_all();
        ZBObjectSpec spec("S", row.text);
        int line = 0;
        EXPECT_TRUE(iszbwarn(spec.parse(&line))) << row.text;
        EXPECT_EQ(line, row.line) << row.text;
        const std::string message = top_message();
        EXPECT_EQ(message.substr(0, message.find('\n')), row.message) << row.text;
        EXPECT_FALSE(spec.is_parsed());
    }
    get_zberror().clear_all();
}

TEST_F(ObjectSpecs, VariablesDependInAnyOrder)
{
    for (const char* text : {"$<A> = eval(\"$<B>+1\");\n$<B> = \"1\";", "$<B> = \"1\";\n$<A> = eval(\"$<B>+1\");"}) {
        db.set_spec_source("T", text, true);
        ZBDBObject* object = add_object(db.get_objectspec_by_name("T")->get_id());
        EXPECT_EQ(object->update_vars(), ZBErrC_okFinished);
        EXPECT_EQ(object->get_var_value("A"), "1+1") << text;
    }
}

TEST_F(ObjectSpecs, CyclesStayUnfinishedAndExpressionsRun)
{
    const int id = add_spec("T", "$<A> = \"$<B>\";\n$<B> = \"$<A>\";\n"
                                 "$<N> = \"4\";\n$<Sum> = eval(\"$=($<N> * 2 + 1) items\");\n"
                                 "$<Big> = eval(\"$=($<N> > 3)\");\n$<Up> = eval(\"$<%UName>/$<%lName>\");\n"
                                 "$<Name> = \"Ann\";\n$<Missing> = eval(\"[$<Nope>]\");\n");
    ZBDBObject* object = add_object(id);
    EXPECT_EQ(object->update_vars(), ZBErrC_okNotFinished);
    EXPECT_FALSE(object->get_var_by_tag("A")->is_initialised());
    EXPECT_EQ(object->get_var_value("A"), "$<B>");
    EXPECT_EQ(object->get_var_value("Sum"), "9 items");
    EXPECT_EQ(object->get_var_value("Big"), "true");
    EXPECT_EQ(object->get_var_value("Up"), "ANN/ann");
    EXPECT_EQ(object->get_var_value("Missing"), "[$<Nope>]");
    EXPECT_EQ(object->get_var_value("Nope"), "$<Nope>");
}

TEST_F(ObjectSpecs, ParentWalkAndAutoCounters)
{
    const int top = add_spec("Top", "$<Title> = \"Home\";\n$<Seq> = auto(\"007\");\n");
    const int child = add_spec("Child", "$<Path> = eval(\"$<^Title>/$<^^Title>\");\n");
    ZBDBObject* parent = add_object(top);
    ZBDBObject* object = add_object(child, parent);
    // The grandparent is the database, which has no Title: the text stays unfinished.
    EXPECT_EQ(object->get_var_value("Path"), "$<^Title>/$<^^Title>");
    EXPECT_EQ(object->get_var_value("Title", true), "Home");
    EXPECT_EQ(parent->get_var_value("Seq", false, true), "008");
    EXPECT_EQ(parent->get_var_value("Seq", false, true), "009");
    EXPECT_EQ(parent->get_var_value("Seq"), "009");
}

TEST_F(ObjectSpecs, InheritanceKeepsTheDerivedSpecsOwn)
{
    add_spec("Base", "$<Name> = \"base\";\n$<Kind> = \"thing\";\n$[Part] = ${Base}[];\n@Script Run >\"base()\"<;\n");
    add_spec("Other", "$<Kind> = \"other\";\n$<Extra> = \"x\";\n");
    const int id = add_spec("Derived", "inherits Base;\ninherits Other;\n$<Name> = \"mine\";\n@Script Run >\"mine()\"<;\n");
    ZBObjectSpec* spec = db.get_objectspec_by_id(id);
    EXPECT_EQ(spec->get_varspec_by_name("Name")->get_spec(), "mine");
    // The first base wins over later ones.
    EXPECT_EQ(spec->get_varspec_by_name("Kind")->get_spec(), "thing");
    EXPECT_EQ(spec->get_varspec_by_name("Extra")->get_spec(), "x");
    EXPECT_NE(spec->get_child_by_name("Part"), nullptr);
    EXPECT_EQ(spec->get_script("Run")->m_script, "mine()");
    EXPECT_TRUE(db.is_spec_derived_from(id, db.get_objectspec_by_name("Base")->get_id()));
    EXPECT_FALSE(db.is_spec_derived_from(db.get_objectspec_by_name("Base")->get_id(), id));
}

TEST_F(ObjectSpecs, ResolvingFaultsGiveTheLineAndChangeNothing)
{
    struct Row {
        const char* name;
        const char* text;
        int line;
        const char* message;
    };
    const Row rows[] = {
        {"Lost", "$<A> = \"1\";\ninherits Nowhere;", 2, "Spec Inheritance Error: Lost:2: Could not find inherited spec name Nowhere."},
        {"Self", "\ninherits Self;", 2, "Spec Inheritance Error: Self:2: error The spec Self inherits from itself."},
        {"Kid", "\n\n$[C] = ${Nowhere};", 3, "Child Spec Error: Kid:3 Could not find child spec name Nowhere."},
        {"Kid2", "$[C] = ${Kid2=Nowhere};", 1, "Child Default Spec Error: Kid2:1 Could not find child spec name Nowhere."},
    };
    for (const Row& row : rows) {
        get_zberror().clear_all();
        db.set_spec_source(row.name, "", false);
        ZBObjectSpec* spec = db.get_objectspec_by_name(row.name);
        spec->set_text(row.text);
        int line = 0;
        EXPECT_TRUE(iszbwarn(db.parse_objectspec(*spec, &line))) << row.name;
        EXPECT_EQ(line, row.line) << row.name;
        EXPECT_EQ(top_message(), row.message) << row.name;
    }
    get_zberror().clear_all();
}

TEST_F(ObjectSpecs, InheritanceCycleIsReported)
{
    db.set_spec_source("A", "inherits B;", false);
    db.set_spec_source("B", "\ninherits A;", false);
    int line = 0;
    EXPECT_TRUE(iszbwarn(db.parse_objectspec(*db.get_objectspec_by_name("A"), &line)));
    EXPECT_EQ(line, 1);
    EXPECT_EQ(top_message(), "Spec Error: A:1: Error in inherited spec B.");
    EXPECT_TRUE(iszbwarn(db.parse_objectspecs(false)));
    EXPECT_EQ(db.get_spec_errors().size(), 2u);
}

TEST_F(ObjectSpecs, ABadEditIsNotAppliedAndObjectsKeepTheirValues)
{
    const int id = add_spec("T", "$<A> = \"one\";\n$<B> = \"two\";\n");
    ZBDBObject* object = add_object(id);
    ASSERT_FALSE(iszbwarn(object->set_var_value("A", "mine")));
    ASSERT_FALSE(iszbwarn(db.edit_objectspec(id)));
    db.get_objectspec_by_id(id)->set_text("$<A> = \"one\";\nnonsense;\n");
    int line = 0;
    EXPECT_TRUE(iszbwarn(db.commit_objectspec(id, std::string(), &line)));
    EXPECT_EQ(line, 2);
    EXPECT_EQ(object->get_nvars(), 2);
    EXPECT_EQ(object->get_var_value("A"), "mine");
    get_zberror().clear_all();
    ASSERT_FALSE(iszbwarn(db.revert_objectspec(id)));
    EXPECT_EQ(db.get_objectspec_by_id(id)->get_text(), "$<A> = \"one\";\n$<B> = \"two\";\n");

    // A good edit applies: B goes, C comes, the user's A stays.
    ASSERT_FALSE(iszbwarn(db.edit_objectspec(id)));
    db.get_objectspec_by_id(id)->set_text("$<A> = \"one\";\n$<C> = eval(\"$<A>!\");\n");
    ASSERT_FALSE(iszbwarn(db.commit_objectspec(id))) << top_message();
    EXPECT_EQ(object->get_nvars(), 2);
    EXPECT_EQ(object->get_var_value("A"), "mine");
    EXPECT_EQ(object->get_var_value("C"), "mine!");
    EXPECT_EQ(object->get_var_by_tag("B"), nullptr);
}

TEST_F(ObjectSpecs, SpecsInUseCannotBeDeleted)
{
    const int base = add_spec("Base", "$<A> = \"1\";");
    const int used = add_spec("Used", "inherits Base;");
    add_object(used);
    EXPECT_TRUE(iszbwarn(db.delete_objectspec(base)));
    EXPECT_TRUE(iszbwarn(db.delete_objectspec(used)));
    get_zberror().clear_all();
    const int spare = add_spec("Spare", "");
    EXPECT_FALSE(iszbwarn(db.delete_objectspec(spare)));
    EXPECT_EQ(db.get_objectspec_by_name("Spare"), nullptr);
}

TEST_F(ObjectSpecs, ValuesAcrossObjectsAndReferences)
{
    const int id = add_spec("Person", "$<Name> = prompt(\"\");\n");
    add_spec("Job", "$<Who> = \"\";\nconstrain $<Who> reference \"${Person} Name\";\n");
    for (const char* name : {" Ann ", "Bob", "Ann", ""})
        add_object(id)->set_var_value("Name", name);
    std::vector<std::string> values;
    db.get_var_values("Name", values);
    EXPECT_EQ(values, (std::vector<std::string>{"Ann", "Bob"}));
    values.clear();
    db.get_ref_constraint_values("${Person} Name", values);
    EXPECT_EQ(values, (std::vector<std::string>{"Ann", "Bob"}));
    values.clear();
    db.get_ref_constraint_values("Person Name", values);
    EXPECT_EQ(values, (std::vector<std::string>{"ERROR: REFERENCE should be followed by \"${SPEC} VARIABLE\""}));
    values.clear();
    db.get_ref_constraint_values("${Ghost} Name", values);
    EXPECT_EQ(values, (std::vector<std::string>{"Cannot find spec Ghost"}));
}

TEST_F(ObjectSpecs, VariablesSurviveSaveAndLoad)
{
    const std::string dir = Tervalon::Test::make_temp_dir("specvars");
    const std::string file = dir + "/vars.zbd";
    ZBDatabase saved;
    ASSERT_FALSE(iszbwarn(saved.load(file, true)));
    int id = -1;
    ASSERT_FALSE(iszbwarn(saved.add_objectspec("T", "$<Plain> = \"p\";\n$<Seq> = auto(\"001\");\n"
                                                    "$<Calc> = eval(\"$<Plain>+$<Note>\");\n$<Note> = prompt(\"\");\n",
                                               &id)));
    ZBDBObject* object = new ZBDBObject();
    ASSERT_FALSE(iszbwarn(saved.add_object(object, &saved, "Object", "", id, std::string())));
    ASSERT_FALSE(iszbwarn(saved.apply_objectspec_to_db(*object, id, true)));
    object->set_var_value("Note", "a # hash\\ and # more");
    object->get_var_value("Seq", false, true);
    const int objectId = object->get_id();
    ASSERT_FALSE(iszbwarn(saved.save(true, true, false))) << top_message();
    saved.unload();

    // Only what differs from the spec is stored; the derived value is worked out again.
    const std::string text = Tervalon::Test::read_file(file);
    EXPECT_NE(text.find("!V!Seq=002\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("Plain=p"), std::string::npos) << text;
    EXPECT_EQ(text.find("!V!Calc="), std::string::npos) << text;

    ZBDatabase loaded;
    ASSERT_FALSE(iszbwarn(loaded.load(file, false))) << top_message();
    ZBDBObject* back = loaded.get_object_by_id(objectId);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->get_var_value("Note"), "a # hash\\ and # more");
    EXPECT_EQ(back->get_var_value("Seq"), "002");
    EXPECT_EQ(back->get_var_value("Plain"), "p");
    EXPECT_EQ(back->get_var_value("Calc"), "p+a # hash\\ and # more");
    ASSERT_NE(loaded.get_objectspec_by_name("T"), nullptr);
    EXPECT_EQ(loaded.get_objectspec_by_name("T")->get_nvarspecs(), 4);
    loaded.unload();
}

TEST_F(ObjectSpecs, VariableListsInText)
{
    ZBDBObject object;
    EXPECT_FALSE(iszbwarn(object.var_from_string("A=1# B=two words# C=\\# not a break")));
    EXPECT_EQ(object.get_var_value("A"), "1");
    EXPECT_EQ(object.get_var_value("B"), "two words");
    EXPECT_EQ(object.get_var_value("C"), "# not a break");
    EXPECT_EQ(object.var_to_string(2), "C=\\# not a break");
    EXPECT_TRUE(iszbwarn(object.var_from_string("no equals here")));
    EXPECT_EQ(top_message(), "Invalid embedded variable no equals here");
    get_zberror().clear_all();
    object.locate_vars("Dear $<Who>, on $<DATE> in $<YEAR>");
    EXPECT_TRUE(object.get_var_by_tag("Who")->is_prompt());
    EXPECT_EQ(object.get_var_value("YEAR").size(), 4u);
}

TEST_F(ObjectSpecs, ExportAndImport)
{
    add_spec("Base", "$<A> = \"1\";\n");
    add_spec("Derived", "inherits Base;\n$<B> = \"2\";\n");
    std::ostringstream out;
    db.export_specs(out);
    const std::string sep(72, '#');
    EXPECT_EQ(out.str(), sep + "{Base}\n$<A> = \"1\";\n" + sep + "{Derived}\ninherits Base;\n$<B> = \"2\";\n");

    ZBDatabase other;
    ASSERT_FALSE(iszbwarn(other.load("", false)));
    std::istringstream in(out.str());
    std::vector<std::string> names;
    ASSERT_FALSE(iszbwarn(other.import_specs(in, "specs.zbo", &names))) << top_message();
    EXPECT_EQ(names, (std::vector<std::string>{"Base", "Derived"}));
    EXPECT_EQ(other.get_objectspec_by_name("Derived")->get_nvarspecs(), 2);

    struct Row {
        const char* text;
        const char* message;
    };
    const Row rows[] = {
        {"stray\n", "(f.zbo:1): error: Unknown line \"stray\" outside spec definition."},
        {"{}\n", "(f.zbo:1): error: Empty spec name."},
        {"[]\n", "(f.zbo:1): error: Empty query name."},
        {"{A}\n{A}\n", "(f.zbo:2): error: Extra \"{A}\" tag."},
        {"{A\n", "(f.zbo:1): error: Unterminated spec \"{A\""},
    };
    for (const Row& row : rows) {
        get_zberror().clear_all();
        std::string text = row.text;
        if (text[0] == '{' || text[0] == '[')
            for (size_t at = 0; at != std::string::npos; at = text.find('\n', at + 1))
                text.insert(at == 0 ? 0 : at + 1, at + 1 < text.size() ? sep : "");
        std::istringstream bad(text);
        EXPECT_TRUE(iszbwarn(other.import_specs(bad, "f.zbo"))) << row.text;
        EXPECT_EQ(top_message(), row.message) << text;
    }
    get_zberror().clear_all();
    // A spec file's faults carry the file's own line numbers.
    std::istringstream faulty(sep + "{Bad}\n$<A> = \"1\";\noops;\n");
    EXPECT_TRUE(iszbwarn(other.import_specs(faulty, "f.zbo")));
    ASSERT_EQ(other.get_spec_errors().size(), 1u);
    const std::string& error = other.get_spec_errors()[0];
    EXPECT_EQ(error.substr(0, error.find('\n')), "f.zbo:3: error Unknown symbol \"oops\".");
    get_zberror().clear_all();
}

} // namespace
