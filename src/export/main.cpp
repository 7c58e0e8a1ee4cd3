#include "export/export.h"
#include "platform/folder.h"
#include "platform/memory_limit.h"

int main(int argc, char **argv)
{
    orlo::limit_memory();
    orlo::enter_folder();
    return orlo::exporting::run(argc, argv);
}
