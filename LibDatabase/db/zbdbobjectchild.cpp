#include "LibDatabase/db/zbdbobjectchild.h"

// ZBDBObjectChild is a template; this unit keeps one implementation file per class.
namespace Tervalon {
}
