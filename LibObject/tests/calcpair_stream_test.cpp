#include "LibObject/container/zbcalcpair.h"
#include "LibObject/object/zbobject.h"

#include <gtest/gtest.h>

#include <string>

using namespace Tervalon;

namespace {

class PairHolder : public ZBObject {
public:
    PairHolder() { PairHolder::register_zbobject(); }
    void register_zbobject() override { register_objectname("CalcPairHolder", &PairHolder::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<PairHolder>(out, from, "CalcPairHolder"); }
    bool operator==(const PairHolder& o) const { return m_type == o.m_type && m_hours == o.m_hours; }

    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override
    {
        m_type.serialise(*this, in, out, prefix, "et", 'O');
        m_hours.serialise(*this, in, out, prefix, "hr", -1.0);
        return ZBObject::serialise(in, out, prefix, version);
    }

    ZBCalcPair<char> m_type{'O'};
    ZBCalcPair<double> m_hours{-1.0};
};

ZBObjectPreReg g_register("CalcPairHolder", &PairHolder::create_zbobject);

TEST(CalcPairStream, BothSidesReadBackAndDefaultsTakeNoLine)
{
    PairHolder holder;
    std::string text;
    ASSERT_FALSE(iszbwarn(holder.object_to_string(text, 0)));
    EXPECT_EQ(text.find("et"), std::string::npos);
    EXPECT_EQ(text.find("hr"), std::string::npos);

    holder.m_type.set_orig('O');
    holder.m_type.set_calc('T');
    holder.m_hours.set_orig(0.1);
    ASSERT_FALSE(iszbwarn(holder.object_to_string(text, 0)));
    EXPECT_NE(text.find("O T"), std::string::npos) << text;

    PairHolder back;
    back.m_hours.set_orig(5.0);
    ASSERT_FALSE(iszbwarn(back.object_from_string(text, 0)));
    EXPECT_EQ(back.m_type.orig, 'O');
    EXPECT_EQ(back.m_type.calc, 'T');
    EXPECT_EQ(back.m_hours.orig, 0.1);
    EXPECT_EQ(back.m_hours.calc, 0.1);
}

TEST(CalcPairStream, SettingOrigOverwritesCalcAndTheFlagChoosesTheSide)
{
    ZBCalcPair<int> pair(3);
    pair.set_calc(8);
    EXPECT_EQ(pair.get(), 8);
    pair.set_fixed(true);
    EXPECT_EQ(pair.get(), 3);
    pair.set_orig(5);
    EXPECT_EQ(pair.calc, 5);
}

} // namespace
