#include "explain/explain.h"
#include "platform/memory_limit.h"

int main(int argc, char **argv)
{
    orlo::limit_memory();
    return orlo::explain::run(argc, argv);
}
