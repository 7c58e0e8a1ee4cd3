#include "platform/folder.h"
#include "platform/memory_limit.h"
#include "view/view.h"

int main(int argc, char **argv)
{
    orlo::limit_memory();
    orlo::enter_folder();
    return orlo::view::run(argc, argv);
}
