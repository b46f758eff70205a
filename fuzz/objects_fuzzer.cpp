// The operations on embedded objects. The input is a document and a list of operations, which must give the same
// whatever pieces the document comes in; and the host library's reading of all objects, which must agree with it.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "check.h"
#include "mifhost/document.h"
#include "mifhost/error.h"
#include "mifhost/object.h"
#include "plan.h"
#include "session.h"

namespace miffuzz
{

namespace
{

constexpr size_t planSize = 65;
constexpr uint32_t fillSize = 4096;
constexpr size_t mostObjects = 8;

// An object as a file, with the checks that hold for each operation.
class ObjectFile
{
public:
    ObjectFile(const Session &session, std::string name)
        : files_(session.files()), name_(std::move(name)), handle_{{}, name_.c_str(), session.context()}
    {
    }
    ObjectFile(const ObjectFile &) = delete;
    ObjectFile &operator=(const ObjectFile &) = delete;

    int32_t open()
    {
        return files_.mifFileOpen(&handle_);
    }

    int32_t close()
    {
        return files_.mifFileClose(&handle_);
    }

    int32_t seek(int32_t offset, int32_t origin)
    {
        return files_.mifFileSeek(&handle_, offset, origin);
    }

    int32_t tell()
    {
        return files_.mifFileTell(&handle_);
    }

    std::string read(int32_t count)
    {
        const auto size = static_cast<size_t>(std::max(count, 0));
        const auto place = std::make_unique<char[]>(size); // its end guarded by AddressSanitizer
        const int32_t before = tell();
        const int32_t delivered = files_.mifFileRead(&handle_, place.get(), count);
        require(delivered >= 0 && delivered <= std::max(count, 0), "a read delivers at most what was asked for");
        require(before < 0 || tell() == before + delivered, "the position moves on by what was delivered");
        return {place.get(), static_cast<size_t>(delivered)};
    }

    // From the start to the end, in blocks of that size.
    std::string readAll(int32_t blockSize)
    {
        std::string all;
        open();
        for (std::string block = read(blockSize); !block.empty(); block = read(blockSize)) {
            all += block;
        }
        close();
        return all;
    }

private:
    const MifFileAccess &files_;
    std::string name_;
    MifFileHandle handle_;
};

std::string nameOf(const Session &session, uint32_t number)
{
    const std::vector<std::string> &frames = session.frames();
    return number < frames.size() ? frames[number] : std::to_string(static_cast<int32_t>(number) - 8);
}

// Carries the plan out. Returns all that the operations answered.
std::string operate(Session &session, Plan plan)
{
    std::string answers;
    auto file = std::make_unique<ObjectFile>(session, "5");
    while (!plan.empty()) {
        const uint32_t operation = plan.u8();
        const uint32_t argument = operation % 8 < 5 ? plan.u16() : 0;
        switch (operation % 8) {
        case 0:
            file = std::make_unique<ObjectFile>(session, nameOf(session, argument % 16));
            answers += std::to_string(file->open());
            break;
        case 1:
        case 2:
            answers += file->read(static_cast<int16_t>(argument % 0x1000)) + '|';
            break;
        case 3:
        case 4:
            answers +=
                std::to_string(file->seek(static_cast<int16_t>(argument), static_cast<int32_t>(operation / 8 % 4)));
            break;
        case 5:
            answers += std::to_string(file->tell()) + '|';
            break;
        case 6:
            answers += std::to_string(file->close());
            break;
        default:
            file->close();
            session.fill();
        }
    }
    file->close();
    return answers;
}

// Blocks of every size give the beginning of the same data: a read may stop before the end, but not lie.
void readBlocks(const Session &session)
{
    size_t objects = 0;
    for (const std::string &name : session.frames()) {
        if (++objects > mostObjects) {
            return;
        }
        ObjectFile file(session, name);
        const std::string large = file.readAll(65536);
        for (const int32_t blockSize : {64, 101, 4096}) {
            const std::string small = file.readAll(blockSize);
            require(large.starts_with(small) || small.starts_with(large), "blocks of every size give the same data");
        }
    }
}

// The same objects through the host library.
void readWithHost(const Session &session, std::string_view document, bool isExtended)
{
    mifhost::MemoryStream stream(document);
    mifhost::Document reader(
        stream, {.bufferSize = 1 << 18, .form = isExtended ? mifhost::TokenForm::Extended : mifhost::TokenForm::Plain});
    try {
        while (reader.next() != nullptr) {
        }
    } catch (const mifhost::Error &) {
        return;
    }
    size_t objects = 0;
    for (const std::string &name : session.frames()) {
        if (++objects > mostObjects) {
            return;
        }
        const std::string expected = ObjectFile(session, name).readAll(65536);
        std::string all(expected.size() + 4096, '\0');
        const std::span<uint8_t> bytes(reinterpret_cast<uint8_t *>(all.data()), all.size());
        try {
            mifhost::Object object(reader, name);
            all.resize(object.read(bytes));
            require(all.starts_with(expected), "the host library reads what the operations give");
            object.seek(all.size() / 2);
            std::string half(all.size() + 1, '\0');
            half.resize(object.read({reinterpret_cast<uint8_t *>(half.data()), half.size()}));
            require(std::string_view(all).substr(all.size() / 2) == half, "a seek goes where it should");
        } catch (const mifhost::Error &) {
            continue;
        }
    }
}

} // namespace

} // namespace miffuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using namespace miffuzz;
    std::string_view document(reinterpret_cast<const char *>(data), size);
    Plan plan(document, planSize);
    const bool isExtended = plan.u8() % 2 != 0;

    Conditions conditions{.bufferSizes = {fillSize, fillSize}, .isExtended = isExtended};
    Session whole(document, conditions);
    const std::string answers = operate(whole, plan);
    whole.fillAll();
    readBlocks(whole);
    if (whole.result() == MIF_SUCCESS && !whole.hadEnough()) {
        readWithHost(whole, document, isExtended);
    }

    Conditions piecewise{.bufferSizes = {fillSize, fillSize}, .readSizes = {1, 7, 50}, .isExtended = isExtended};
    Session pieces(document, piecewise);
    require(operate(pieces, plan) == answers, "the operations do not depend on the pieces");
    pieces.fillAll();
    require(pieces.stream() == whole.stream(), "the operations do not disturb the conversion");
    return 0;
}
