#include "input/conditionals.h"
#include "diag/messages.h"
namespace orlo {
int is_if(const char *, std::uint32_t) { return 0; }
int is_endif(const char *, std::uint32_t) { return 0; }
int in_if0() { return 0; }
int do_if_interface(Input &) { return OK; }
int get_if(Input &, float &) { return OK; }
int do_endif(Input &) { return OK; }
int ifdef_match() { return 1; }
}
