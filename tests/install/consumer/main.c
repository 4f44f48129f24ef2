/* A user's program built against the installed library. Without a
 * connect_robot() every function returns at once. */
#include <qrx_host.h>
#include <stdio.h>

int main(void)
{
    const int status = connection_status();
    disconnect_robot();
    printf("no link: status %d, show nothing\n", status);
    return status == 0 ? 0 : 1;
}
