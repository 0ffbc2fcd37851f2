set(ENCODER_SOURCES
  ByteSink.cpp
  ExifBlock.cpp
  HeifEncoder.cpp
  IfdWriter.cpp
  JpegEncoder.cpp
  Metadata.cpp
  PictureEncoder.cpp
  PngEncoder.cpp
  SrgbProfile.cpp
  TiffEncoder.cpp
  )
set(ENCODER_TESTS
  MetadataTests.cpp
  PictureEncoderTests.cpp
  )

if(ORVANE_HEIF_EXPORT)
  set_source_files_properties(HeifEncoder.cpp PROPERTIES COMPILE_DEFINITIONS ORVANE_HEIF_EXPORT)
endif()
