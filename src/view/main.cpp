#include "view/view.h"

int main(int argc, char **argv) { return orlo::view::run(argc, argv); }
