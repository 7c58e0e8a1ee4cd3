#include "driver/run.h"

int main(int argc, char **argv) { return orlo::run(argc, argv); }
