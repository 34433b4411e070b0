// A program that uses the messages alone.
#include <Pb/Legacy/If/AppEndpoint.pb.h>

#include <iostream>

int main()
{
    Pb::Legacy::If::AppEndpointStr sent;
    sent.mutable_endpoint()->set_port(8080);
    Pb::Legacy::If::AppEndpointStr received;
    if (!received.ParseFromString(sent.SerializeAsString()))
        return 1;
    std::cout << received.endpoint().port() << '\n';
}
