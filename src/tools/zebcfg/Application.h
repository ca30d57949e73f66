// One run of the tool, from the command line to the exit status.
#ifndef ZEBCFG_APPLICATION_H
#define ZEBCFG_APPLICATION_H

int runApplication(int argc, char** argv);

#endif
