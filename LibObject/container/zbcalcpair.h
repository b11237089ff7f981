#pragma once

#include "LibObject/object/zbobject.h"
#include "LibObject/object/zbsrl.h"
#include "LibObject/object/zbsrlvalue.h"
#include "LibCore/error/zberror.h"

#include <istream>
#include <ostream>
#include <string>
#include <type_traits>

namespace Tervalon {

// A planner field held twice: orig as the user set it, calc as recalculation
// derived it. The planner writes only calc; setting orig also overwrites calc.
// The flag says which of the two applies (the user may fix a value by hand).
//
// Stream form: one field line, "<orig>" when calc equals orig, else
// "<orig> <calc>", each in the value's own text; the line is left out when both
// equal the default.
template <class T>
class ZBCalcPair {
public:
    ZBCalcPair() = default;
    explicit ZBCalcPair(const T& value) : orig(value), calc(value) {}

    void set_orig(const T& value)
    {
        orig = value;
        calc = value;
    }
    void set_calc(const T& value) { calc = value; }
    // The value that applies: the user's when fixed, else the calculated one.
    const T& get() const { return m_useOrig ? orig : calc; }
    bool is_fixed() const { return m_useOrig; }
    void set_fixed(bool fixed) { m_useOrig = fixed; }

    bool operator==(const ZBCalcPair& other) const
    {
        return orig == other.orig && calc == other.calc && m_useOrig == other.m_useOrig;
    }
    bool operator!=(const ZBCalcPair& other) const { return !(*this == other); }

    // Streams both values of the pair under one tag of the owner's text.
    int serialise(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, const std::string& tag,
                  const T& defaultValue, bool tryBareTag = false)
    {
        Binder binder(*this, defaultValue);
        return owner.serialise_value(in, out, prefix, tag, binder, tryBareTag);
    }

    T orig{};
    T calc{};

private:
    class Binder : public ZBSrl {
    public:
        Binder(ZBCalcPair& pair, const T& defaultValue) : m_pair(pair), m_default(defaultValue) {}
        bool is_default() const override { return m_pair.orig == m_default && m_pair.calc == m_default; }
        void set_to_default() override
        {
            m_pair.orig = m_default;
            m_pair.calc = m_default;
        }
        int read(std::istream& in) override
        {
            in >> m_pair.orig;
            T calc = m_pair.orig;
            if (in >> calc)
                m_pair.calc = calc;
            else
                m_pair.calc = m_pair.orig;
            return ZBErrC_ok;
        }
        int write(std::ostream& out, int) const override
        {
            put(out, m_pair.orig);
            if (!(m_pair.calc == m_pair.orig)) {
                out << ' ';
                put(out, m_pair.calc);
            }
            return out ? ZBErrC_ok : zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
        }
        // Doubles keep every digit they need to read back exactly.
        static void put(std::ostream& out, const T& value)
        {
            if constexpr (std::is_floating_point<T>::value)
                out << zb_double_to_string(double(value));
            else
                out << value;
        }

    private:
        ZBCalcPair& m_pair;
        T m_default;
    };

    bool m_useOrig = false;
};

} // namespace Tervalon
