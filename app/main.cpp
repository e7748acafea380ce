#include "app/start/start_up.h"

int main(int argc, char** argv) {
    return RunLectora(argc, argv);
}
