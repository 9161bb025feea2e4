#include "tqx/log/table/ArrowProducer.h"

#include <cerrno>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <utility>

namespace tqx
{

namespace
{

/// What an exported stream refers to.
struct StreamContent {
    ArrowProducer producer;
    std::string error;
    int code = 0; ///< of the error

    template<typename Work>
    int run(const Work& work) noexcept
    {
        if (code != 0)
            return code;
        try {
            work();
        } catch (const std::bad_alloc&) {
            code = ENOMEM;
        } catch (const std::system_error& failure) {
            code =
                failure.code().category() == std::generic_category() ? failure.code().value() : EIO;
            note(failure.what());
        } catch (const std::exception& failure) {
            code = EIO;
            note(failure.what());
        } catch (...) {
            code = EIO;
        }
        return code;
    }

    void note(const char* text) noexcept
    {
        try {
            error = text;
        } catch (const std::bad_alloc&) {
            error.clear();
        }
    }
};

StreamContent& contentOf(ArrowArrayStream* stream)
{
    return *static_cast<StreamContent*>(stream->private_data);
}

int getSchema(ArrowArrayStream* stream, ArrowSchema* out)
{
    StreamContent& content = contentOf(stream);
    return content.run([&] { content.producer.describe(*out); });
}

int getNext(ArrowArrayStream* stream, ArrowArray* out)
{
    StreamContent& content = contentOf(stream);
    return content.run([&] {
        if (!content.producer.next(*out))
            *out = {};
    });
}

const char* getLastError(ArrowArrayStream* stream)
{
    const StreamContent& content = contentOf(stream);
    if (content.code == ENOMEM)
        return "out of memory";
    return content.error.empty() ? nullptr : content.error.c_str();
}

void releaseStream(ArrowArrayStream* stream)
{
    delete static_cast<StreamContent*>(stream->private_data);
    stream->release = nullptr;
}

} // namespace

void exportStream(ArrowProducer producer, ArrowArrayStream& out)
{
    auto content = std::make_unique<StreamContent>();
    content->producer = std::move(producer);
    out.get_schema = getSchema;
    out.get_next = getNext;
    out.get_last_error = getLastError;
    out.release = releaseStream;
    out.private_data = content.release();
}

} // namespace tqx
