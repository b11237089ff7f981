#include "LibObject/object/zbobject.h"
#include "LibObject/object/zbid.h"
#include "LibDate/date/zbdate.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

// A nested part, written as an object of its own.
class Leaf : public ZBObject {
public:
    Leaf() { Leaf::register_zbobject(); }
    Leaf(const Leaf& other) = default;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_field<int>(in, out, prefix, "V", m_value, 0);
        ZBSrlObjectArray<Leaf> children(m_children, version);
        if (iszbwarn(serialise_object(in, out, prefix, "K", children)))
            return zbpass(ZBLOC);
        return ZBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("TestLeaf", &Leaf::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<Leaf>(out, from, "TestLeaf"); }

    int m_value = 0;
    ZBPtrArray<Leaf> m_children;
};

// One field of every kind the stream knows.
class Sample : public ZBObject {
public:
    Sample() { Sample::register_zbobject(); }
    Sample(const Sample& other) = default;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_field<int>(in, out, prefix, "I", m_int, -1);
        serialise_field<double>(in, out, prefix, "D", m_double, 0.0);
        serialise_field<bool>(in, out, prefix, "B", m_bool, false);
        serialise_string(in, out, prefix, "Name", m_name, true);
        serialise_field<std::string>(in, out, prefix, "Esc", m_escaped, std::string());
        serialise_string_vector(in, out, prefix, "List", m_list);
        ZBSrlObject<Leaf> leaf(m_leaf, version);
        if (iszbwarn(serialise_object(in, out, prefix, "Leaf", leaf)))
            return zbpass(ZBLOC);
        serialise_data(in, out, m_raw);
        return ZBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("TestSample", &Sample::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<Sample>(out, from, "TestSample"); }

    int m_int = -1;
    double m_double = 0.0;
    bool m_bool = false;
    std::string m_name;
    std::string m_escaped;
    std::vector<std::string> m_list;
    Leaf m_leaf;
    ZBPtrArray<std::string> m_raw;
};

ZBObjectPreReg g_sample("TestSample", &Sample::create_zbobject);
ZBObjectPreReg g_leaf("TestLeaf", &Leaf::create_zbobject);

std::string text_of(const ZBObject& object)
{
    std::string text;
    EXPECT_EQ(object.object_to_string(text, 0), ZBErrC_ok);
    return text;
}

Sample* read_sample(const std::string& text)
{
    ZBObject* object = nullptr;
    EXPECT_EQ(ZBObject::object_from_string(text, object, 0), ZBErrC_ok);
    return dynamic_cast<Sample*>(object);
}

} // namespace

TEST(StreamFormat, DefaultObjectIsOnlyItsMarkers)
{
    Sample sample;
    EXPECT_EQ(text_of(sample), "{TestSample\n@Leaf\n{TestLeaf\n}\n}\n");
}

TEST(StreamFormat, ExactBytesOfEachFieldKind)
{
    Sample sample;
    sample.m_int = 12;
    sample.m_name = "Some text";
    sample.m_escaped = "a\nb\\c";
    sample.m_list = {"x", "y"};
    sample.m_leaf.m_value = 1;
    sample.m_raw.push_back(new std::string("{looks like a class"));
    sample.m_raw.push_back(new std::string(""));
    // A value escaped twice: the line feed stands as two backslashes and n.
    EXPECT_EQ(text_of(sample),
              "{TestSample\n!I!12\n!Name!Some text\n!Esc!a\\\\nb\\\\\\\\c\n!List!x\n!List!y\n"
              "@Leaf\n{TestLeaf\n!V!1\n}\n\\{looks like a class\n\n}\n");
}

TEST(StreamRoundTrip, HostileTextsComeBackInBothEscapingDepths)
{
    const std::vector<std::string> texts = {"line\nfeed", "back\\slash", "!bang!", "{brace", "}close", "@at",
                                            "\\n literal", "ends with \\", "", "tab\there", "ünïcödé ✓"};
    for (const std::string& text : texts) {
        Sample sample;
        sample.m_name = text;
        sample.m_escaped = text;
        sample.m_list = {text, text};
        sample.m_raw.push_back(new std::string(text));
        std::unique_ptr<Sample> back(read_sample(text_of(sample)));
        ASSERT_TRUE(back) << text;
        EXPECT_EQ(back->m_name, text);
        EXPECT_EQ(back->m_escaped, text);
        EXPECT_EQ(back->m_list, sample.m_list);
        ASSERT_EQ(back->m_raw.size(), 1) << text;
        EXPECT_EQ(*back->m_raw[0], text);
        EXPECT_EQ(text_of(*back), text_of(sample)) << text;
    }
}

TEST(StreamRoundTrip, CarriageReturnsAndNulsAreDropped)
{
    Sample sample;
    sample.m_name = std::string("a\r\nb\0c", 6);
    std::unique_ptr<Sample> back(read_sample(text_of(sample)));
    EXPECT_EQ(back->m_name, "a\nbc");
}

TEST(StreamRoundTrip, DoublesReadBackExactly)
{
    for (double value : {0.1, 1.0 / 3.0, 1e-300, -2.5e17, 123456.789012345678}) {
        Sample sample;
        sample.m_double = value;
        std::unique_ptr<Sample> back(read_sample(text_of(sample)));
        EXPECT_EQ(back->m_double, value);
    }
}

TEST(StreamRoundTrip, NestedObjectsFindTheirOwnEnd)
{
    Sample sample;
    Leaf* child = new Leaf();
    child->m_value = 2;
    Leaf* grandchild = new Leaf();
    grandchild->m_value = 3;
    child->m_children.push_back(grandchild);
    sample.m_leaf.m_children.push_back(child);
    sample.m_int = 7; // after the nested object in no particular place: found by tag
    std::unique_ptr<Sample> back(read_sample(text_of(sample)));
    ASSERT_EQ(back->m_leaf.m_children.size(), 1);
    ASSERT_EQ(back->m_leaf.m_children[0]->m_children.size(), 1);
    EXPECT_EQ(back->m_leaf.m_children[0]->m_children[0]->m_value, 3);
    EXPECT_EQ(back->m_int, 7);
}

TEST(StreamUnknownData, UnknownFieldsSurviveAfterKnownOnesAndPurgeDropsThem)
{
    const std::string text = "{TestSample\n!Future!one\n!I!5\n@Later\n{TestLeaf\n!V!9\n}\nraw line\n!Other!two\n}\n";
    std::unique_ptr<Sample> sample(read_sample(text));
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->m_int, 5);
    const std::string written = text_of(*sample);
    // Known fields first, then the unknown ones in their original order.
    EXPECT_EQ(written, "{TestSample\n!I!5\n@Leaf\n{TestLeaf\n}\nraw line\n!Future!one\n@Later\n{TestLeaf\n!V!9\n}\n"
                       "!Other!two\n}\n");
    std::unique_ptr<Sample> again(read_sample(written));
    EXPECT_EQ(text_of(*again), written);

    ZBObject::set_purge_unhandled(true);
    const std::string purged = text_of(*again);
    ZBObject::set_purge_unhandled(false);
    EXPECT_EQ(purged.find("Future"), std::string::npos);
    EXPECT_EQ(purged.find("Later"), std::string::npos);
}

TEST(StreamPrefixes, ComposedTagsAndBareTagFallback)
{
    EXPECT_EQ(make_ctag("", "X"), "X");
    EXPECT_EQ(make_ctag("A", "X"), "A+X");
    EXPECT_EQ(strip_prefix("A+B+X"), "X");

    class Prefixed : public ZBObject {
    public:
        int serialise(std::istream* in, std::ostream* out, const std::string&, int) override
        {
            serialise_field<int>(in, out, "A", "X", m_a, 0);
            serialise_field<int>(in, out, "", "X", m_bare, 0, true);
            return ZBErrC_ok;
        }
        int m_a = 0;
        int m_bare = 0;
    } object;
    object.clear_unhandled_data();
    std::istringstream in("!A+X!4\n}\n");
    ASSERT_EQ(object.read_class_entries(in), ZBErrC_ok);
    object.serialise(&in, nullptr, "", 0);
    EXPECT_EQ(object.m_a, 4);
    EXPECT_EQ(object.m_bare, 0); // consumed by the prefixed field already

    std::istringstream only("!B+X!6\n}\n");
    object.clear_unhandled_data();
    object.read_class_entries(only);
    object.serialise(&only, nullptr, "", 0);
    EXPECT_EQ(object.m_bare, 6);
}

TEST(StreamErrors, UnknownClassTruncationAndMissingEnd)
{
    ZBObject* object = nullptr;
    EXPECT_TRUE(iszberr(ZBObject::object_from_string("{NoSuchClass\n}\n", object, 0)));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "Could not identify object NoSuchClass");
    EXPECT_EQ(object, nullptr);
    get_zberror().clear_all();

    EXPECT_TRUE(iszberr(ZBObject::object_from_string("{TestSample\n@Leaf\n{TestLeaf\n!V!1\n", object, 0)));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "Could not find the end of the class marker.");
    EXPECT_EQ(object, nullptr);
    get_zberror().clear_all();

    // An outer class with no end reads as if it ended with the stream.
    std::unique_ptr<Sample> sample(read_sample("junk before\n{TestSample\n!I!3\n"));
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->m_int, 3);

    // An array of objects stops at an unknown class with that error.
    EXPECT_TRUE(iszberr(ZBObject::object_from_string("{TestSample\n@Leaf\n{TestLeaf\n@K\n{Mystery\n}\n}\n}\n", object, 0)));
    EXPECT_EQ(object, nullptr);
    get_zberror().clear_all();
}

TEST(StreamClassLevel, CloneCompareAssignAndSelfTest)
{
    Sample sample;
    sample.m_int = 42;
    sample.m_name = "name";
    std::unique_ptr<ZBObject> clone(sample.clone_class());
    ASSERT_TRUE(clone);
    EXPECT_TRUE(sample.derived_compare(*clone, 0));
    Sample other;
    EXPECT_FALSE(sample.derived_compare(other, 0));
    EXPECT_EQ(other.derived_assign(sample, 0), ZBErrC_ok);
    EXPECT_EQ(other.m_int, 42);
    std::ostringstream report;
    EXPECT_EQ(sample.selftest_serialisation(false, 0, &report, nullptr), ZBErrC_ok) << report.str();
    EXPECT_EQ(ZBObject::get_id_from_name("TestSample"), sample.get_class_id());
    EXPECT_EQ(ZBObject::get_id_from_name("Nothing"), -1);
}

TEST(StreamIds, KeyTripleFormAndWildcardMatch)
{
    ZBId id(4, 100002, -1);
    std::ostringstream out;
    out << id;
    EXPECT_EQ(out.str(), "4/100002/-1/");
    ZBId back;
    std::istringstream in("///");
    in >> back;
    EXPECT_EQ(back, ZBId());
    EXPECT_TRUE(ZBId(4, -1, 3).compare(ZBId(4, 7, 3)));
    EXPECT_FALSE(ZBId(4, 6, 3).compare(ZBId(4, 7, 3)));
    EXPECT_FALSE(ZBId(4, -1, 3) == ZBId(4, 7, 3));
}

// Unknown fields are held only by the objects that have some; copies, assignment
// and comparison must still carry them, and an object without any must not take
// them on from one that has.
TEST(StreamUnknownData, UnknownFieldsFollowCopiesAndAssignment)
{
    std::unique_ptr<Sample> known(read_sample("{TestSample\n!I!5\n}\n"));
    std::unique_ptr<Sample> unknown(read_sample("{TestSample\n!I!5\n!Future!one\n}\n"));
    ASSERT_TRUE(known && unknown);
    EXPECT_EQ(known->get_nserentries(), 0);
    ASSERT_EQ(unknown->get_nserentries(), 1);

    Sample copy(*unknown);
    EXPECT_EQ(text_of(copy), text_of(*unknown));
    EXPECT_TRUE(copy == *unknown);
    EXPECT_FALSE(copy == *known);
    EXPECT_FALSE(*known == copy);

    // The copy owns its own: dropping the original's leaves it whole.
    unknown->clear_unhandled_data();
    EXPECT_EQ(copy.get_nserentries(), 1);
    EXPECT_NE(text_of(copy).find("!Future!one"), std::string::npos);

    Sample target(*known);
    target = copy;
    EXPECT_NE(text_of(target).find("!Future!one"), std::string::npos);
    target = *known;
    EXPECT_EQ(target.get_nserentries(), 0);
    EXPECT_EQ(text_of(target), text_of(*known));
    EXPECT_TRUE(target == *known);

    ZBPtrArray<ZBSerialisationEntry> taken;
    copy.take_serentries(taken);
    EXPECT_EQ(taken.size(), 1);
    EXPECT_EQ(copy.get_nserentries(), 0);
    EXPECT_EQ(text_of(copy), text_of(*known));
}
