#include "host/run.h"
#include "platform/program.h"

int main(int argc, char** argv) { return clipfio::host::Main(platform::Arguments(argc, argv)); }
