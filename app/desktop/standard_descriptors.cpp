#include "app/desktop/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

void openClosedStandardDescriptors() {
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
        if (fcntl(fd, F_GETFD) != -1) {
            continue;
        }
        // The lowest free number is this one, as every lower one is open.
        const int null = open("/dev/null", fd == STDIN_FILENO ? O_RDONLY : O_WRONLY);
        if (null >= 0 && null != fd) {
            dup2(null, fd);
            close(null);
        }
    }
}
