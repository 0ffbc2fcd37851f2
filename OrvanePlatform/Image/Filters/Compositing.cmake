# Operations on several images, images without one, and the neighbourhood and warp of single ones.
set(COMPOSITING_SOURCES
  Filters/Compositing.cpp
  Filters/Gradients.cpp
  Filters/Histogram.cpp
  Filters/NoiseReduction.cpp
  Filters/Perspective.cpp
  Filters/Vignette.cpp)
set(COMPOSITING_TESTS
  Filters/CompositingTests.cpp
  Filters/GeneratorTests.cpp
  Filters/HistogramTests.cpp
  Filters/NoiseReductionTests.cpp
  Filters/PerspectiveTests.cpp)
