// zebcfg: the configuration file of the directory server on the command line.
#include "Application.h"

int main(int argc, char** argv)
{
    return runApplication(argc, argv);
}
