#include "pipe_problem.h"

namespace tarn {

Client::Problem problemOf(PipeFailure::Kind kind)
{
    switch (kind) {
    case PipeFailure::Kind::NoService:
        return Client::Problem::NoService;
    case PipeFailure::Kind::AccessDenied:
        return Client::Problem::AccessDenied;
    case PipeFailure::Kind::NameTooLong:
        return Client::Problem::NameTooLong;
    case PipeFailure::Kind::Busy:
    case PipeFailure::Kind::Other:
        break;
    }
    return Client::Problem::SystemError;
}

} // namespace tarn
