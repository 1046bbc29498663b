#include "reader/reader.h"

int main(int argc, char **argv) { return tidebrook::runReader(argc, argv); }
