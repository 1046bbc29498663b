// bench_server serves generated feeds until its standard input ends, and does what each line of
// that asks for:
//
//   serve FROM TO ITEMS FIRST VALIDATORS   /FROM to /TO are feeds of so many items, the oldest with
//                                          the number FIRST, with validators (1) or without (0)
//   delay MILLISECONDS                     every answer waits so long
//   counts                                 prints what there was since the last time
//
// Each line is answered with one.

#include "bench/store_maker.h"

#include <iostream>
#include <sstream>

namespace tidebrook {

namespace {

void serve(FeedServer &server, std::istream &words) {
    int number = 0;
    int last = 0;
    int items = 0;
    int first = 0;
    bool haveValidators = false;
    for (words >> number >> last >> items >> first >> haveValidators; number <= last; ++number)
        serveFeed(server, number, items, haveValidators, first);
}

void delay(FeedServer &server, std::istream &words) {
    int milliseconds = 0;
    words >> milliseconds;
    server.setDelay(std::chrono::milliseconds(milliseconds));
}

void printCounts(FeedServer &server) {
    std::cout << "requests " << server.requests().size() << " received " << server.bytesReceived()
              << " sent " << server.bytesSent() << ' ';
    server.clearRequests();
    server.clearCounts();
}

} // namespace

} // namespace tidebrook

int main() {
    using namespace tidebrook;
    FeedServer server;
    std::cout << "port " << server.port() << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string order;
        words >> order;
        if (order == "serve")
            serve(server, words);
        else if (order == "delay")
            delay(server, words);
        else if (order == "counts")
            printCounts(server);
        std::cout << "done" << std::endl;
    }
}
