// The reference edit written for libvips, in linear light: side-by-side compiles and runs it.
//   vips-edit INPUT OUTPUT.jpg

#include <vips/vips.h>

// Unsharp masking: amount of the difference between the image and its blurred copy is added.
static int unsharp(VipsImage* in, VipsImage** out, double sigma, double amount)
{
    VipsImage *kept = NULL, *blurred = NULL, *more = NULL, *less = NULL;
    // Read by both branches, and by the blur with its margins: without a cache of whole rows, what
    // comes before is computed again and again. Wide blurs as sums of boxes are 10 times as fast.
    const int failed = vips_tilecache(in, &kept, "tile_width", in->Xsize, "tile_height", 32,
                                      "max_tiles", (int)(sigma * 6 / 32) + 12, "access",
                                      VIPS_ACCESS_SEQUENTIAL, "threaded", TRUE, NULL)
        || vips_gaussblur(kept, &blurred, sigma, "precision",
                          sigma > 4 ? VIPS_PRECISION_APPROXIMATE : VIPS_PRECISION_FLOAT, NULL)
        || vips_linear1(kept, &more, 1 + amount, 0, NULL)
        || vips_linear1(blurred, &less, -amount, 0, NULL) || vips_add(more, less, out, NULL);
    VIPS_UNREF(kept);
    VIPS_UNREF(blurred);
    VIPS_UNREF(more);
    VIPS_UNREF(less);
    return failed;
}

// 1 in the middle, 0.757 in the corners.
static int vignetteMask(int width, int height, VipsImage** out)
{
    VipsImage* t[6] = {NULL};
    double toMiddle[] = {-width / 2.0, -height / 2.0};
    double one[] = {1, 1};
    double sum[] = {1, 1};
    VipsImage* row = vips_image_new_matrix_from_array(2, 1, sum, 2);
    const double reach = (width / 2.0) * (width / 2.0) + (height / 2.0) * (height / 2.0);
    const int failed = vips_xyz(&t[0], width, height, NULL)
        || vips_linear(t[0], &t[1], one, toMiddle, 2, NULL)
        || vips_multiply(t[1], t[1], &t[2], NULL) || vips_recomb(t[2], &t[3], row, NULL)
        || vips_linear1(t[3], &t[4], 1 / reach, 0, NULL)
        || vips_math2_const1(t[4], &t[5], VIPS_OPERATION_MATH2_POW, 1.5, NULL)
        || vips_linear1(t[5], out, -0.243, 1, NULL);
    for (int i = 0; i < 6; ++i)
        VIPS_UNREF(t[i]);
    g_object_unref(row);
    return failed;
}

static int edited(VipsImage* in, VipsImage** out)
{
    // Saturation and vibrance as one factor of 1.25 about the luma.
    const double s = 1.25;
    double colour[9];
    const double luma[] = {0.2126, 0.7152, 0.0722};
    for (int i = 0; i < 9; ++i)
        colour[i] = (1 - s) * luma[i % 3] + (i / 3 == i % 3 ? s : 0);
    VipsImage* matrix = vips_image_new_matrix_from_array(3, 3, colour, 9);
    VipsImage* t[11] = {NULL};
    const double side = VIPS_MIN(in->Xsize, in->Ysize);
    const int failed = vips_colourspace(in, &t[0], VIPS_INTERPRETATION_scRGB, NULL)
        // Exposure of 0.495 stops, then the contrast about mid-grey in a gamma space.
        || vips_linear1(t[0], &t[1], 1.4093, 0, NULL)
        || vips_math2_const1(t[1], &t[2], VIPS_OPERATION_MATH2_POW, 0.4545, NULL)
        || vips_linear1(t[2], &t[3], 1.494 * 65535, 0.5 * (1 - 1.494) * 65535, NULL)
        || vips_cast(t[3], &t[4], VIPS_FORMAT_USHORT, NULL) // cuts to the range
        || vips_gamma(t[4], &t[5], "exponent", 1 / 2.2, NULL)
        || vips_linear1(t[5], &t[6], 1 / 65535.0, 0, NULL) || vips_recomb(t[6], &t[7], matrix, NULL)
        || unsharp(t[7], &t[8], side / 150, 0.25) || unsharp(t[8], &t[9], 1, 0.6)
        || vignetteMask(in->Xsize, in->Ysize, &t[10]) || vips_multiply(t[9], t[10], out, NULL);
    for (int i = 0; i < 11; ++i)
        VIPS_UNREF(t[i]);
    g_object_unref(matrix);
    return failed;
}

int main(int argc, char** argv)
{
    if (VIPS_INIT(argv[0]))
        vips_error_exit(NULL);
    if (argc != 3)
        vips_error_exit("vips-edit INPUT OUTPUT.jpg");
    VipsImage* in = vips_image_new_from_file(argv[1], NULL);
    VipsImage *linear = NULL, *tagged = NULL, *out = NULL;
    if (!in || edited(in, &linear)
        || vips_copy(linear, &tagged, "interpretation", VIPS_INTERPRETATION_scRGB, NULL)
        || vips_colourspace(tagged, &out, VIPS_INTERPRETATION_sRGB, NULL)
        || vips_jpegsave(out, argv[2], "Q", 90, NULL))
        vips_error_exit(NULL);
    g_object_unref(out);
    g_object_unref(tagged);
    g_object_unref(linear);
    g_object_unref(in);
    vips_shutdown();
    return 0;
}
