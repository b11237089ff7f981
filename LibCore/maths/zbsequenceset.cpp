#include "LibCore/maths/zbsequenceset.h"

// The instances the modules use.
namespace Tervalon {
template class ZBSequenceSet<int>;
template class ZBSequenceSet<double>;
}
