// A user's C++ program built against the installed library: nothing listens
// on port 1, so the connection is refused with an exception.
#include <qrx_host.hpp>

#include <iostream>

int main()
{
    qrx_set_connect_poll_interval(50);
    try {
        qrx::Connection robot("127.3.9.1", std::chrono::seconds(1), 1);
        std::cout << "connected\n";
        return 1;
    } catch (const qrx::ConnectionRefused &e) {
        std::cout << "refused: " << e.what() << '\n';
    }
    return 0;
}
