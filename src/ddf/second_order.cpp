#include "ddf/second_order.h"
#include "diag/messages.h"
namespace orlo {
int do_S2(Section &, Input &) { return OK; }
}
