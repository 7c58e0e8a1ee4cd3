#include "driver/memory_limit.h"
#include "driver/run.h"

int main(int argc, char **argv)
{
    orlo::limit_memory();
    return orlo::run(argc, argv);
}
