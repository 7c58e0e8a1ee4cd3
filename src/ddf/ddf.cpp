#include "ddf/ddf.h"
#include "diag/messages.h"
namespace orlo {
int do_DDF(Generator, Section &, Input &) { return OK; }
}
