// Histograms and statistics of images.
#include <string>
#include <vector>

#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

using Call = std::function<void()>;

#if defined(HAVE_OPENCV)
Call PeerHistogram(ImageRef image, ImageRef mask, float low, float high) {
  return [pixels = bench::MatOf(image), selected = mask != 0 ? bench::MatOf(mask) : cv::Mat(), low,
          high] {
    const int channel = 0;
    const int classes = 256;
    const float range[] = {low, high};
    const float* ranges[] = {range};
    cv::Mat histogram;
    cv::Scalar mean;
    cv::Scalar deviation;
    cv::calcHist(&pixels, 1, &channel, selected, histogram, 1, &classes, ranges);
    cv::meanStdDev(pixels, mean, deviation, selected);
  };
}

Call PeerStatistics(ImageRef image) {
  return [pixels = bench::MatOf(image)] {
    cv::Scalar mean;
    cv::Scalar deviation;
    double low = 0;
    double high = 0;
    cv::meanStdDev(pixels, mean, deviation);
    cv::minMaxLoc(pixels, &low, &high);
  };
}

Call PeerCentroid(ImageRef image) {
  return [pixels = bench::MatOf(image)] {
    const cv::Moments moments = cv::moments(pixels);
    static_cast<void>(moments);
  };
}
#else
Call PeerHistogram(ImageRef, ImageRef, float, float) {
  return {};
}
Call PeerStatistics(ImageRef) {
  return {};
}
Call PeerCentroid(ImageRef) {
  return {};
}
#endif

Call Histogram(ImageRef image, ImageRef mask, float low, float high) {
  return [=] {
    static std::vector<uint32_t> counters(256);
    HistogramReport report;
    ZEL_Histogram(image, mask, 256, low, high, counters.data(), &report);
  };
}

Call Quantify(ImageRef image, ImageRef labels) {
  return [=] {
    QuantifyReport report;
    ZEL_Quantify(image, labels, &report, nullptr, nullptr);
  };
}

Call Centroid(ImageRef image) {
  return [=] {
    float x = 0;
    float y = 0;
    ZEL_Centroid(image, 0, &x, &y);
  };
}

const bench::Family analysis([] {
  for (const auto& [width, height] : bench::SIZES) {
    const ImageRef bytes = bench::MakeImage(IMAGE_U8, width, height);
    const ImageRef words = bench::MakeImage(IMAGE_I16, width, height);
    const ImageRef floats = bench::MakeImage(IMAGE_SGL, width, height);
    const ImageRef blobs = bench::MakeBlobs(width, height, 0);
    const ImageRef noise = bench::MakeNoise(width, height, 0);
    const auto pair = [&](const char* operation, const char* type, Call ours, Call theirs) {
      bench::Pair(operation, type, width, height, "opencv", std::move(ours), std::move(theirs));
    };
    pair("histogram256", "u8", Histogram(bytes, 0, 0, 0), PeerHistogram(bytes, 0, 0, 256));
    pair("histogram256", "u8-blobs", Histogram(blobs, 0, 0, 0), PeerHistogram(blobs, 0, 0, 256));
    pair("histogram256_range", "u8", Histogram(bytes, 0, 10, 200),
         PeerHistogram(bytes, 0, 10, 201));
    pair("histogram256_masked", "u8", Histogram(bytes, blobs, 0, 0),
         PeerHistogram(bytes, blobs, 0, 256));
    pair("histogram256_noise_mask", "u8", Histogram(bytes, noise, 0, 0),
         PeerHistogram(bytes, noise, 0, 256));
    // The peer takes no signed words.
    pair("histogram256", "i16", Histogram(words, 0, 0, 0), {});
    pair("histogram256_masked", "i16", Histogram(words, blobs, 0, 0), {});
    pair("histogram256", "f32", Histogram(floats, 0, 0, 256), PeerHistogram(floats, 0, 0, 256));
    pair("histogram256_masked", "f32", Histogram(floats, blobs, 0, 256),
         PeerHistogram(floats, blobs, 0, 256));
    pair("quantify", "u8", Quantify(bytes, 0), PeerStatistics(bytes));
    pair("quantify_labels", "u8", Quantify(bytes, blobs), {});
    pair("quantify_labels_noise", "u8", Quantify(bytes, noise), {});
    pair("quantify", "i16", Quantify(words, 0), PeerStatistics(words));
    pair("quantify", "f32", Quantify(floats, 0), PeerStatistics(floats));
    pair("centroid", "u8", Centroid(bytes), PeerCentroid(bytes));
    pair("centroid", "i16", Centroid(words), PeerCentroid(words));
    pair("centroid", "f32", Centroid(floats), PeerCentroid(floats));
  }
});

}  // namespace
