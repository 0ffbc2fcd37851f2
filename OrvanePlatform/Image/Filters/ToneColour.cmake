# Operations on the tone and the colour of one image, pixel by pixel.
set(TONE_COLOUR_SOURCES)
set(TONE_COLOUR_TESTS
  Filters/FilterTesting.cpp)
