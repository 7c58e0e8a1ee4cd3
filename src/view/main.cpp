#include "platform/memory_limit.h"
#include "view/view.h"

int main(int argc, char **argv)
{
    orlo::limit_memory();
    return orlo::view::run(argc, argv);
}
