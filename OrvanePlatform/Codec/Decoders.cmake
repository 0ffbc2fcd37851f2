set(DECODER_SOURCES
  DecoderSupport.cpp
  )
set(DECODER_TESTS
  DecoderSupportTests.cpp
  )
