#include "FormatDecoders.h"
#include "JpegMetadata.h"
#include "PagesAhead.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>

#include <jerror.h>
#include <jpeglib.h>

namespace orvane {

namespace {

// A block of 64 samples takes two bits at least, or next to none in a progressive scan that is
// empty; chroma is extra. Twice the larger bound.
constexpr double mostPixelsPerByte = 1024;
// Progressive files in the wild have about ten scans; each costs a walk over the whole picture.
constexpr int mostScans = 200;

/// Everything that must outlive a jump out of libjpeg: no object with a destructor is made between
/// setjmp and the calls that may jump.
struct Session {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    jpeg_source_mgr source{};
    jpeg_progress_mgr progress{};
    std::jmp_buf escape{};
    bool endsEarly = false;
    bool ranOut = false; ///< the decoder asked for bytes after the last one
    bool isDamaged = false;
    int messageCode = 0;

    std::unique_ptr<Bitmap> bitmap;
    std::vector<uint8_t*> rows;

    ~Session() { jpeg_destroy_decompress(&info); }
};

Session& sessionOf(j_common_ptr info)
{
    return *static_cast<Session*>(info->client_data);
}
Session& sessionOf(j_decompress_ptr info)
{
    return *static_cast<Session*>(info->client_data);
}

[[noreturn]] void onError(j_common_ptr info)
{
    Session& session = sessionOf(info);
    session.messageCode = info->err->msg_code;
    std::longjmp(session.escape, 1);
}

void onMessage(j_common_ptr info, int level)
{
    if (level >= 0)
        return;
    Session& session = sessionOf(info);
    if (info->err->msg_code == JWRN_HIT_MARKER
        && reinterpret_cast<j_decompress_ptr>(info)->unread_marker == JPEG_EOI)
        session.endsEarly = true;
    else if (info->err->msg_code != JWRN_EXTRANEOUS_DATA)
        session.isDamaged = true;
}

void onProgress(j_common_ptr info)
{
    if (reinterpret_cast<j_decompress_ptr>(info)->input_scan_number > mostScans) {
        info->err->msg_code = 0;
        info->err->error_exit(info);
    }
}

boolean onSourceEnd(j_decompress_ptr info)
{
    static const JOCTET endOfImage[2] = {0xff, JPEG_EOI};
    sessionOf(info).ranOut = true;
    info->src->next_input_byte = endOfImage;
    info->src->bytes_in_buffer = 2;
    return TRUE;
}

void onSkip(j_decompress_ptr info, long count)
{
    if (count <= 0)
        return;
    const size_t skipped = std::min(size_t(count), info->src->bytes_in_buffer);
    info->src->next_input_byte += skipped;
    info->src->bytes_in_buffer -= skipped;
}

void open(Session& session, Bytes bytes)
{
    jpeg_decompress_struct& info = session.info;
    info.err = jpeg_std_error(&session.errors);
    session.errors.error_exit = onError;
    session.errors.emit_message = onMessage;
    info.client_data = &session;
    jpeg_create_decompress(&info);
    info.client_data = &session;
    session.progress.progress_monitor = onProgress;
    info.progress = &session.progress;
    session.source.next_input_byte = bytes.data();
    session.source.bytes_in_buffer = bytes.size();
    session.source.init_source = [](j_decompress_ptr) {};
    session.source.fill_input_buffer = onSourceEnd;
    session.source.skip_input_data = onSkip;
    session.source.resync_to_restart = jpeg_resync_to_restart;
    session.source.term_source = [](j_decompress_ptr) {};
    info.src = &session.source;
}

/// False when libjpeg gave up.
bool readHeader(Session& session, Bytes bytes)
{
    if (setjmp(session.escape))
        return false;
    open(session, bytes);
    jpeg_read_header(&session.info, TRUE);
    jpeg_decompress_struct& info = session.info;
    switch (info.jpeg_color_space) {
    case JCS_GRAYSCALE:
        info.out_color_space = JCS_GRAYSCALE;
        break;
    case JCS_CMYK:
    case JCS_YCCK:
        info.out_color_space = JCS_CMYK;
        break;
    default:
        info.out_color_space = JCS_RGB;
    }
    return true;
}

/// All rows, straight into the bitmap.
bool readRows(Session& session, PagesAhead& pages)
{
    if (setjmp(session.escape))
        return false;
    jpeg_start_decompress(&session.info);
    while (session.info.output_scanline < session.info.output_height) {
        const JDIMENSION done = session.info.output_scanline;
        jpeg_read_scanlines(&session.info, session.rows.data() + done,
                            session.info.output_height - done);
        pages.filled(session.bitmap->rowBytes() * done);
    }
    return true;
}

/// The same with memory at hand.
bool readAhead(Session& session)
{
    PagesAhead pages(session.bitmap->row(0), session.bitmap->byteSize());
    return readRows(session, pages);
}

Error failure(const Session& session)
{
    switch (session.messageCode) {
    case JERR_BAD_PRECISION:
        return Error{"This JPEG has samples of more than 8 bits, which Orvane cannot read."};
    case JERR_SOF_UNSUPPORTED:
        return Error{
            "This kind of JPEG (lossless or hierarchical) is one that Orvane cannot read."};
    case JERR_CONVERSION_NOTIMPL:
    case JERR_BAD_J_COLORSPACE:
    case JERR_COMPONENT_COUNT:
        return Error{"This JPEG stores its colours in a way that Orvane cannot read."};
    case JERR_OUT_OF_MEMORY:
        return Error{sentence::noMemory};
    default:
        return Error{session.ranOut ? sentence::endsEarly : sentence::damaged};
    }
}

/// Adobe's files store ink as what is left of white, and nearly every CMYK JPEG is one of them.
void invert(Bitmap& bitmap)
{
    uint8_t* const samples = bitmap.row(0);
    std::transform(samples, samples + bitmap.byteSize(), samples,
                   [](uint8_t v) { return uint8_t(255 - v); });
}

} // namespace

Result<DecoderOutput> decodeJpeg(Bytes bytes)
{
    Session session;
    if (!readHeader(session, bytes))
        return failure(session);
    jpeg_decompress_struct& info = session.info;
    // A progressive file keeps two bytes of coefficient for each sample until its last scan.
    const size_t channels = size_t(info.out_color_space == JCS_GRAYSCALE ? 1
                                       : info.out_color_space == JCS_RGB ? 3
                                                                         : 4);
    const bool manyScans = jpeg_has_multiple_scans(&info);
    if (auto fits = checkPictureSize(info.image_width, info.image_height,
                                     channels * (manyScans ? 3 : 1), bytes.size(),
                                     info.arith_code ? 64 * mostPixelsPerByte : mostPixelsPerByte);
        !fits)
        return fits.error();

    session.bitmap = std::make_unique<Bitmap>(int(info.image_width), int(info.image_height),
                                              int(channels), SampleType::U8, AlphaKind::None);
    session.rows.resize(info.image_height);
    for (size_t y = 0; y < session.rows.size(); ++y)
        session.rows[y] = session.bitmap->row(int(y));
    if (!readAhead(session))
        return failure(session);
    if (session.endsEarly || (manyScans && session.ranOut))
        return Error{sentence::endsEarly};

    DecoderOutput output;
    output.bitmap = std::move(session.bitmap);
    if (info.out_color_space == JCS_CMYK) {
        output.model = SampleModel::Cmyk;
        if (info.saw_Adobe_marker)
            invert(*output.bitmap);
    }
    if (session.isDamaged)
        output.note = sentence::partlyDamaged;
    readJpegMetadata(bytes, output);
    return output;
}

} // namespace orvane
