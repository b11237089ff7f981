#include "LibCore/error/zberrorbase.h"

namespace Tervalon {

ZBErrorBase::~ZBErrorBase() = default;

int ZBErrorBase::on_error(int value)
{
    return value;
}

} // namespace Tervalon
