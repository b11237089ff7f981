#include "LibCore/maths/zbsequencesetentry.h"

// ZBSequenceSetEntry is a template; this unit keeps one implementation file per class.
namespace Tervalon {
template class ZBSequenceSetEntry<int>;
template class ZBSequenceSetEntry<double>;
}
