// What it costs to bring a device's picture up to date, against packing the whole frame with zlib,
// alternating: typing, scrolling text and a film, 1920x1080, one thread.
//
// usage: picture-encoding [ROUNDS]

#include "Benchmarks/Figures.h"
#include "Screen/Codecs/JpegCodec.h"
#include "Screen/Codecs/ZlibCodec.h"
#include "Screen/Codecs/ZstdCodec.h"
#include "Screen/PictureReceiver.h"
#include "Screen/PictureSender.h"
#include "Tests/Screen/Scenes.h"

#include <cstdio>
#include <cstdlib>

namespace
{

using namespace farview;

constexpr int width = 1920;
constexpr int height = 1080;

class Measurement
{
public:
    Measurement() { mScenes.writeText(mFrame, wholeOf(mFrame)); }

    void run(const char* scene, double limit, int rounds, void (*change)(Picture&, Scenes&))
    {
        update();
        Figures sending, receiving, plain;
        std::size_t bytes = 0;
        for (int i = 0; i < rounds; ++i) {
            change(mFrame, mScenes);
            const double begin = microsecondsNow();
            const auto packets = update();
            const double sent = microsecondsNow();
            for (const auto& packet : packets) {
                bytes += packet.data.size();
                mIsGood = mReceiver.apply(packet) && mIsGood;
            }
            const double received = microsecondsNow();
            mZlib.encode(mFrame.view(), wholeOf(mFrame), 1);
            sending.push_back((sent - begin) / 1000);
            receiving.push_back((received - sent) / 1000);
            plain.push_back((microsecondsNow() - received) / 1000);
        }
        printRatio({scene, "a whole frame by zlib", "ms", sending, plain}, limit);
        std::printf("  %.1f ms to receive, %.1f kB\n", median(receiving),
                    static_cast<double>(bytes) / rounds / 1000);
    }
    bool isGood() const { return mIsGood; }

private:
    using Figures = std::vector<double>;

    PictureSender::Packets update()
    {
        const auto whole = wholeOf(mFrame);
        mSender.noteDamage({&whole, 1});
        return mSender.packetsFor(mFrame.view(), kBestPictureQuality, {});
    }

    Scenes mScenes;
    Picture mFrame{width, height};
    ZstdCodec mZstd;
    ZlibCodec mZlib;
    JpegCodec mJpeg;
    PictureSender mSender{width, height, mZstd, mJpeg};
    PictureReceiver mReceiver{width, height, mZlib, {&mZstd, &mJpeg}};
    bool mIsGood = true;
};

} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 20;
    Measurement measurement;
    measurement.run("typing", 0.05, rounds, [](Picture& frame, Scenes& scenes) {
        scenes.writeText(frame, pixelRect(scenes.number(1900), 500, 8, 10));
    });
    measurement.run("scrolling", 0.3, rounds,
                    [](Picture& frame, Scenes& scenes) { scroll(frame, -48, scenes); });
    measurement.run("film", 0.15, rounds, [](Picture& frame, Scenes& scenes) {
        scenes.takePhotograph(frame, wholeOf(frame));
    });
    return measurement.isGood() ? 0 : 1;
}
