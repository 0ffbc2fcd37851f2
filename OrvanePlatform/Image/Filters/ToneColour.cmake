# Operations on the tone and the colour of one image, pixel by pixel.
set(TONE_COLOUR_SOURCES
  Filters/ColorClamp.cpp
  Filters/ColorControls.cpp
  Filters/ColorCube.cpp
  Filters/ColorCurves.cpp
  Filters/ColorMatrix.cpp
  Filters/ExposureAdjust.cpp
  Filters/FalseColor.cpp
  Filters/GammaAdjust.cpp
  Filters/HighlightShadowAdjust.cpp
  Filters/TemperatureAndTint.cpp
  Filters/Vibrance.cpp)
set(TONE_COLOUR_TESTS
  Filters/FilterTesting.cpp
  Filters/ToneColourTests.cpp)
