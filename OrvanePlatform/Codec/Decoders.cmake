set(DECODER_SOURCES
  ApplyColor.cpp
  ColorProfile.cpp
  ColorSpaces.cpp
  DecoderSupport.cpp
  ExifReader.cpp
  HeifDecoder.cpp
  ImageFromPicture.cpp
  JpegDecoder.cpp
  JpegMetadata.cpp
  MosaicDetection.cpp
  PictureDecoder.cpp
  PngDecoder.cpp
  RawDecoder.cpp
  TiffDecoder.cpp
  TiffSamples.cpp
  WebPDecoder.cpp
  )
set(DECODER_TESTS
  ColorProfileTests.cpp
  DamagedPictureTests.cpp
  DecoderSupportTests.cpp
  PictureDecoderTests.cpp
  RawDecoderTests.cpp
  TestBlocks.cpp
  TestPictures.cpp
  )

add_executable(orvane-fuzz-decoders EXCLUDE_FROM_ALL FuzzDecoders.cpp)
target_link_libraries(orvane-fuzz-decoders PRIVATE OrvaneCodec)
