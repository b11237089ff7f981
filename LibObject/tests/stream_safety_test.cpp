#include "LibObject/object/zbobject.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

using namespace Tervalon;

namespace {

// A node that holds nodes, to nest objects as deep as a test needs.
class Node : public ZBObject {
public:
    Node() { Node::register_zbobject(); }
    Node(const Node& other) = default;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_field<int>(in, out, prefix, "V", m_value, 0);
        ZBSrlObjectArray<Node> children(m_children, version);
        if (iszbwarn(serialise_object(in, out, prefix, "K", children)))
            return zbpass(ZBLOC);
        return ZBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("SafetyNode", &Node::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<Node>(out, from, "SafetyNode"); }

    int m_value = 0;
    ZBPtrArray<Node> m_children;
};

// Writes its second field, and on reading takes it but drops its value.
class LosesOnRead : public ZBObject {
public:
    LosesOnRead() { LosesOnRead::register_zbobject(); }
    LosesOnRead(const LosesOnRead& other) = default;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_field<int>(in, out, prefix, "A", m_a, 0);
        int dropped = 0;
        serialise_field<int>(in, out, prefix, "B", out ? m_b : dropped, 0);
        return ZBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("SafetyLosesOnRead", &LosesOnRead::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from)
    {
        return create_as<LosesOnRead>(out, from, "SafetyLosesOnRead");
    }

    int m_a = 0;
    int m_b = 0;
};

// Reads and writes both fields, but its copy forgets one.
class LosesOnCopy : public ZBObject {
public:
    LosesOnCopy() { LosesOnCopy::register_zbobject(); }
    LosesOnCopy(const LosesOnCopy& other) : ZBObject(other), m_a(other.m_a) {}
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_field<int>(in, out, prefix, "A", m_a, 0);
        serialise_field<int>(in, out, prefix, "B", m_b, 0);
        return ZBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("SafetyLosesOnCopy", &LosesOnCopy::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from)
    {
        return create_as<LosesOnCopy>(out, from, "SafetyLosesOnCopy");
    }

    int m_a = 0;
    int m_b = 0;
};

// One text field, left out of the file when empty.
class Text : public ZBObject {
public:
    Text() { Text::register_zbobject(); }
    Text(const Text& other) = default;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        serialise_string(in, out, prefix, "S", m_text, true);
        return ZBObject::serialise(in, out, prefix, version);
    }
    void register_zbobject() override { register_objectname("SafetyText", &Text::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<Text>(out, from, "SafetyText"); }

    std::string m_text;
};

ZBObjectPreReg g_text("SafetyText", &Text::create_zbobject);
ZBObjectPreReg g_node("SafetyNode", &Node::create_zbobject);
ZBObjectPreReg g_losesOnRead("SafetyLosesOnRead", &LosesOnRead::create_zbobject);
ZBObjectPreReg g_losesOnCopy("SafetyLosesOnCopy", &LosesOnCopy::create_zbobject);

// The text of nodes nested depth deep below an outer node.
std::string nested_text(int depth)
{
    std::string text = "{SafetyNode\n";
    for (int i = 0; i < depth; ++i)
        text += "@K\n{SafetyNode\n!V!" + std::to_string(i) + "\n";
    for (int i = 0; i < depth; ++i)
        text += "}\n";
    return text + "}\n";
}

std::string error_text()
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_details(ZBErrAsp_System) : std::string();
}

} // namespace

TEST(StreamSafety, NestingIsBoundedAndRefusedWithAMessage)
{
    struct Case {
        int depth;
        bool reads;
    };
    for (const Case& c : {Case{ZBSerialisationEntry::C_MaxNesting, true}, Case{ZBSerialisationEntry::C_MaxNesting + 1, false}}) {
        ZBObject* object = nullptr;
        const int result = ZBObject::object_from_string(nested_text(c.depth), object, 0);
        std::unique_ptr<ZBObject> owned(object);
        if (c.reads) {
            EXPECT_EQ(result, ZBErrC_ok) << c.depth;
            const Node* node = dynamic_cast<const Node*>(object);
            for (int i = 0; node && i < c.depth; ++i)
                node = node->m_children.size() == 1 ? node->m_children[0] : nullptr;
            ASSERT_NE(node, nullptr) << c.depth;
            EXPECT_EQ(node->m_value, c.depth - 1);
        } else {
            EXPECT_TRUE(iszberr(result)) << c.depth;
            EXPECT_EQ(object, nullptr);
            EXPECT_EQ(error_text(), "Objects are nested more than " + std::to_string(ZBSerialisationEntry::C_MaxNesting)
                                        + " deep.");
        }
        get_zberror().clear_all();
    }
}

TEST(StreamSafety, SelfTestCatchesAClassThatLosesAField)
{
    std::ostringstream report;
    Node fine;
    fine.m_value = 3;
    fine.m_children.push_back(new Node());
    EXPECT_EQ(fine.selftest_serialisation(true, 0, &report, nullptr), ZBErrC_ok) << report.str();
    EXPECT_EQ(report.str(), "SafetyNode passed.\n");

    report.str("");
    LosesOnRead onRead;
    onRead.m_a = 1;
    onRead.m_b = 2;
    EXPECT_TRUE(iszberr(onRead.selftest_serialisation(true, 0, &report, nullptr)));
    EXPECT_EQ(report.str(), "Read object SafetyLosesOnRead failed equality test.\n");
    get_zberror().clear_all();

    report.str("");
    LosesOnCopy onCopy;
    onCopy.m_b = 5;
    EXPECT_TRUE(iszberr(onCopy.selftest_serialisation(true, 0, &report, nullptr)));
    EXPECT_EQ(report.str(), "Cloned object SafetyLosesOnCopy failed equality test.\n");
    get_zberror().clear_all();
}

// The writer never puts out a nul, so a tag read with one must already be the
// tag it will be written as; otherwise an unknown entry kept as it came turns
// into a known one on the next read, with a body that does not fit it.
TEST(StreamSafety, NulsInATagAreDroppedOnReadAsOnWrite)
{
    const std::string text("{SafetyNode\n!V\0!3\n@K\0\0\n{SafetyNode\n!V!4\n}\n}\n", 44);
    ZBObject* object = nullptr;
    ASSERT_EQ(ZBObject::object_from_string(text, object, 0), ZBErrC_ok);
    std::unique_ptr<ZBObject> owned(object);
    const Node* node = dynamic_cast<const Node*>(object);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->m_value, 3);
    ASSERT_EQ(node->m_children.size(), 1u);
    EXPECT_EQ(node->m_children[0]->m_value, 4);

    std::string written;
    ASSERT_EQ(object->object_to_string(written, 0), ZBErrC_ok);
    ZBObject* again = nullptr;
    EXPECT_EQ(ZBObject::object_from_string(written, again, 0), ZBErrC_ok) << written;
    std::unique_ptr<ZBObject> ownedAgain(again);
    std::string rewritten;
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->object_to_string(rewritten, 0), ZBErrC_ok);
    EXPECT_EQ(written, rewritten);
}

TEST(StreamSafety, ATextFieldGivenTwiceTakesTheLastAndKeepsNoCopy)
{
    for (const char* text : {"{SafetyText\n!S!\n!S!E\n}\n", "{SafetyText\n!S!D\n!S!E\n}\n"}) {
        ZBObject* object = nullptr;
        ASSERT_EQ(ZBObject::object_from_string(text, object, 0), ZBErrC_ok) << text;
        std::unique_ptr<ZBObject> owned(object);
        EXPECT_EQ(dynamic_cast<const Text&>(*object).m_text, "E") << text;
        std::string written;
        ASSERT_EQ(object->object_to_string(written, 0), ZBErrC_ok);
        EXPECT_EQ(written, "{SafetyText\n!S!E\n}\n") << text;
    }
}

TEST(StreamSafety, AnUnknownMemberWithoutItsClassLineIsRefused)
{
    // A member this program does not know is kept as it stands; a damaged one
    // (its class line lost) would otherwise swallow the rest of its owner and
    // be written back as something that no longer reads.
    const std::string kept = "{SafetyText\n!T!a\n@Later\n{Newer\n!X!1\n}\n}\n";
    ZBObject* object = nullptr;
    EXPECT_EQ(ZBObject::object_from_string(kept, object, 0), ZBErrC_ok);
    delete object;
    for (const char* damaged : {"{SafetyText\n!T!a\n@Later\n}\n@Other\n{Newer\n}\n}\n",
                                "{SafetyText\n@Later\n!X!1\n{Newer\n}\n}\n"}) {
        object = nullptr;
        EXPECT_TRUE(iszberr(ZBObject::object_from_string(damaged, object, 0))) << damaged;
        EXPECT_EQ(object, nullptr);
        EXPECT_NE(error_text().find("A class marker is not followed by its class"), std::string::npos) << error_text();
        get_zberror().clear_all();
    }
}
