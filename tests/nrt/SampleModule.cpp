extern "C" int sampleAnswer()
{
    return 42;
}
