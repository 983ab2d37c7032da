// Nothing but a program for the precompiled headers to belong to.
int main()
{
    return 0;
}
