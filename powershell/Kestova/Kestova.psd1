@{
    RootModule        = 'Kestova.psm1'
    ModuleVersion     = '1.1.0'
    GUID              = '3f0c2f5e-6f5b-4c8e-9d3a-6a1f0f4b7c21'
    Description       = 'Recovery-partition management for Windows PCs with a factory recovery area.'
    PowerShellVersion = '3.0'
    FunctionsToExport = @('Get-KestovaStatus', 'Set-KestovaBoot', 'Get-KestovaProblem')
    CmdletsToExport   = @()
    VariablesToExport = @()
    AliasesToExport   = @()
}
