#pragma once

#include "LibObject/object/zbsrl.h"
#include "LibCore/error/zberror.h"
#include "LibCore/textstr/zbtextstr.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <istream>
#include <limits>
#include <ostream>
#include <sstream>
#include <type_traits>
#include <utility>

namespace Tervalon {


namespace zbsrl_detail {
// A value class may give its stored text directly (read_stored/write_stored),
// which is much faster than a string stream for the dates every object holds.
template <class T, class = void>
struct has_stored_text : std::false_type {};
template <class T>
struct has_stored_text<T, std::void_t<decltype(std::declval<T&>().read_stored(std::declval<const std::string&>())),
                                      decltype(std::declval<const T&>().write_stored(std::declval<std::string&>()))>>
    : std::true_type {};
} // namespace zbsrl_detail

// Binds one value with a default and a precision. A value equal to its default
// takes no line in the file. Doubles keep every digit they need to read back
// exactly, unless a precision is given; then they are written fixed with it.
template <class T>
class ZBSrlValue : public ZBSrl {
public:
    ZBSrlValue(T& value, const T& defaultValue, int precision = 0)
        : m_value(value), m_default(defaultValue), m_precision(precision) {}

    bool is_default() const override { return m_value == m_default; }
    void set_to_default() override { m_value = m_default; }

    int read(std::istream& in) override
    {
        in >> m_value;
        return ZBErrC_ok;
    }

    int write(std::ostream& out, int) const override
    {
        if constexpr (std::is_floating_point<T>::value) {
            if (m_precision > 0)
                out << std::fixed << std::setprecision(m_precision) << m_value;
            else
                out << zb_double_to_string(double(m_value));
        } else {
            out << m_value;
        }
        return out ? ZBErrC_ok : zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    }

    int read_text(const std::string& text) override
    {
        if constexpr (std::is_same<T, std::string>::value) {
            // A text value is the whole of the field, spaces and all.
            m_value = text;
            return ZBErrC_ok;
        } else if constexpr (zbsrl_detail::has_stored_text<T>::value) {
            m_value.read_stored(text);
            return ZBErrC_ok;
        } else if constexpr (std::is_floating_point<T>::value) {
            // As extraction would, but the same in every locale.
            const char* first = text.c_str();
            const char* last = first + text.size();
            while (first < last && (*first == ' ' || *first == '\t'))
                ++first;
            if (first < last && *first == '+')
                ++first;
            double parsed = 0.0;
            auto result = std::from_chars(first, last, parsed);
            m_value = result.ec == std::errc() ? T(parsed) : T(0);
            return ZBErrC_ok;
        } else if constexpr (std::is_integral<T>::value && !std::is_same<T, char>::value && !std::is_same<T, bool>::value) {
            // As extraction would: leading blanks skipped, text that is not a number leaves 0.
            errno = 0;
            char* end = nullptr;
            long long parsed = std::strtoll(text.c_str(), &end, 10);
            if (end == text.c_str())
                m_value = T(0);
            else if (errno == ERANGE || parsed > (long long)std::numeric_limits<T>::max())
                m_value = std::numeric_limits<T>::max();
            else if (parsed < (long long)std::numeric_limits<T>::min())
                m_value = std::numeric_limits<T>::min();
            else
                m_value = T(parsed);
            return ZBErrC_ok;
        } else {
            return ZBSrl::read_text(text);
        }
    }

    int write_text(std::string& text, int index) const override
    {
        if constexpr (zbsrl_detail::has_stored_text<T>::value) {
            m_value.write_stored(text);
            return ZBErrC_ok;
        } else if constexpr (std::is_same<T, std::string>::value) {
            text = m_value;
            return ZBErrC_ok;
        } else if constexpr (std::is_integral<T>::value && !std::is_same<T, char>::value) {
            text = std::to_string(m_value);
            return ZBErrC_ok;
        } else if constexpr (std::is_floating_point<T>::value) {
            if (m_precision <= 0) {
                text = zb_double_to_string(double(m_value));
                return ZBErrC_ok;
            }
            return ZBSrl::write_text(text, index);
        } else {
            return ZBSrl::write_text(text, index);
        }
    }

private:
    T& m_value;
    T m_default;
    int m_precision;
};

} // namespace Tervalon
